// nqfexport: the headless host. Loads a scene document, loads the exporter library as a host
// would, and runs its export, printing what a host would show: progress, the error list and the
// statistics.

#include <dlfcn.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "core/Vfs.h"
#include "host/BMMSplitFilename.h"
#include "host/HostServices.h"
#include "host/SceneExport.h"
#include "scene/HeadlessInterface.h"
#include "scene/SceneLoader.h"

#ifdef NQ_HAVE_UI
#include <QApplication>

#include "exporter/UserSettings.h"
#include "ui/QOptionsDlg.h"
#endif

namespace fs = std::filesystem;

namespace {

constexpr const char* kExample = R"(
Example:
  nqfexport ship.json -o ship.nqf
    exports the scene document ship.json to ship.nqf and prints the model's statistics.
  nqfexport ship.json
    writes the file beside the document, its name folded to lower case (ship.nqf).
Exit status: 0 when the file was written without errors, 1 when the export collected errors
(they are printed; no file is written), 2 for a bad document or a bad command line.)";

fs::path programDir() {
    std::error_code error;
    const fs::path self = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::current_path() : self.parent_path();
}

// The host counts what the exporter shows: the error list and any error box mean a failed export.
class ExportHost : public scene::HeadlessInterface {
public:
    using HeadlessInterface::HeadlessInterface;
    int MessageBox(host::HWND owner, const std::string& text, const std::string& caption,
                   unsigned type) override {
        if (caption == "Export errors" || caption == "Error") {
            ++errorsShown;
        }
        return HeadlessInterface::MessageBox(owner, text, caption, type);
    }
    int errorsShown = 0;
};

// The shipped aux_func.lua goes into a configuration directory that lacks one.
void seedConfigDir(const fs::path& dir) {
    std::error_code error;
    if (fs::exists(dir / "aux_func.lua", error)) {
        return;
    }
    for (const fs::path& shipped :
         {programDir() / "aux_func.lua", programDir().parent_path() / "share" / "nqfexp" / "aux_func.lua"}) {
        if (fs::exists(shipped, error)) {
            fs::create_directories(dir, error);
            fs::copy_file(shipped, dir / "aux_func.lua", error);
            if (error) {
                std::cerr << "nqfexport: warning: can't copy " << shipped.string() << " to " << dir.string()
                          << ": " << error.message() << "\n";
            }
            return;
        }
    }
}

// The library sits beside the program, or in the library folder of an installation.
void* loadPlugin() {
    std::string reasons;
    for (const fs::path& candidate :
         {programDir() / "libnqfexp.so", programDir().parent_path() / "lib" / "nqfexp" / "libnqfexp.so"}) {
        if (void* handle = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL)) {
            return handle;
        }
        reasons += std::string("\n  ") + dlerror();
    }
    std::cerr << "nqfexport: can't load the exporter library:" << reasons << "\n";
    return nullptr;
}

#ifdef NQ_HAVE_UI
int runOptionsDialog(int argc, char** argv, const std::string& configDir) {
    host::setPluginConfigDir(configDir);
    QApplication app(argc, argv);
    QOptionsDlg dialog(userSettings(), nullptr);
    dialog.exec();
    return 0;
}
#endif

}  // namespace

int main(int argc, char** argv) {
    nqvfs::mountNative("/");

    CLI::App app{"Exports a scene document to a .nqf model file with the nqfexp exporter library."};
    app.footer(kExample);
    std::string scenePath;
    std::string target;
    std::string configDir;
    bool verbose = false;
    bool options = false;
    app.add_option("SCENE", scenePath, "The scene document (JSON)")->check(CLI::ExistingFile);
    app.add_option("-o,--output", target, "The .nqf file to write (default: beside the scene document)");
    app.add_option(
        "--plugcfg", configDir,
        "The plug-in configuration directory with nqfexp.cfg and aux_func.lua (default: per user)");
    app.add_flag("--verbose", verbose, "Progress as plain lines");
    app.add_flag("--options", options, "Open the options dialog over the settings file and exit");
    try {
        app.parse(argc, argv);
        if (scenePath.empty() && !options) {
            throw CLI::RequiredError("SCENE");
        }
    } catch (const CLI::ParseError& e) {
        const int status = app.exit(e);
        return status == 0 ? 0 : 2;
    }

    if (configDir.empty()) {
        configDir = host::defaultPluginConfigDir();
    }
    seedConfigDir(configDir);

    if (options) {
#ifdef NQ_HAVE_UI
        return runOptionsDialog(argc, argv, configDir);
#else
        std::cerr << "nqfexport: this build has no options dialog (Qt 6 was not found)\n";
        return 2;
#endif
    }

    std::unique_ptr<scene::Scene> scene;
    try {
        scene = scene::loadScene(scenePath);
    } catch (const scene::DocumentError& e) {
        std::cerr << "nqfexport: " << e.describe(fs::path(scenePath).filename().string()) << "\n";
        return 2;
    }

    if (target.empty()) {
        // Beside the document, with the file name folded as the exporter folds its default.
        std::string dir;
        std::string name;
        host::BMMSplitFilename(scenePath, &dir, &name, nullptr);
        std::string folded = name + ".nqf";
        for (char& c : folded) {
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        target = dir + folded;
    }
    target = fs::absolute(target).lexically_normal().string();

    void* library = loadPlugin();
    if (!library) {
        return 2;
    }
    using ClassDescFunction = host::ClassDesc2* (*)(int);
    auto classDesc = reinterpret_cast<ClassDescFunction>(dlsym(library, "LibClassDesc"));
    host::ClassDesc2* desc = classDesc ? classDesc(0) : nullptr;
    std::unique_ptr<host::SceneExport> exporter(desc ? static_cast<host::SceneExport*>(desc->Create())
                                                     : nullptr);
    if (!exporter) {
        std::cerr << "nqfexport: the exporter library offers no exporter\n";
        return 2;
    }

    scene::HeadlessInterface::Options hostOptions;
    hostOptions.verbose = verbose;
    hostOptions.plugCfgDir = configDir;
    ExportHost ip(*scene, hostOptions);
    host::SetCOREInterface(&ip);

    std::error_code error;
    const auto before =
        fs::exists(target, error) ? fs::last_write_time(target, error) : fs::file_time_type::min();
    exporter->DoExport(target.c_str(), nullptr, &ip, true, 0);
    exporter.reset();
    host::SetCOREInterface(nullptr);

    if (ip.errorsShown > 0) {
        return 1;
    }
    const bool written = fs::exists(target, error) && fs::last_write_time(target, error) >= before;
    if (!written) {
        std::cerr << "nqfexport: no file was written\n";
        return 1;
    }
    std::cerr << "nqfexport: wrote " << target << "\n";
    return 0;
}
