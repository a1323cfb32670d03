// nqfexport: the headless host. Loads a scene document, loads the exporter library as a host
// would, and runs its export, printing what a host would show: progress, the error list and the
// statistics.

#include <dlfcn.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "core/ExtException.h"
#include "core/Vfs.h"
#include "exporter/CheckText.h"
#include "exporter/SettingText.h"
#include "exporter/UserSettings.h"
#include "host/BMMSplitFilename.h"
#include "host/Constants.h"
#include "host/HostServices.h"
#include "host/SceneExport.h"
#include "scene/HeadlessInterface.h"
#include "scene/SceneLoader.h"
#include "scene/StageTimes.h"
#include "scene/StatisticsJson.h"
#include "usertext/ParamsLuaWrapper.h"

#ifdef NQ_HAVE_UI
#include <QApplication>

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
  nqfexport ship.json -o ship.nqf --set exportHiddenObjects=1 --set modelScale=1:10
    the same with two settings changed for this run only; the settings file stays as it is.
  nqfexport ship.json -o ship.nqf --stats json
    prints the statistics as JSON on stdout instead of as text on stderr.
  nqfexport ship.json -o ship.nqf --timings
    the same, and prints the time of each stage (load, walk, optimisation, write, finish).
  nqfexport --check-text hook.txt      (or - to read the text from stdin)
    evaluates one node's user-defined text as the export would and prints its TYPE words, its
    settings and the properties it gets, or the exact message the export would report.
  nqfexport --options
    opens the options dialog over the settings file.
Settings (for --set): see docs/cli.md; booleans take 0/1, lists take a label or its number.
Progress goes to stderr as a bar on a terminal, as lines with --verbose, else not at all.
Exit status: 0 when the file was written without errors; 1 when the export collected errors (they
are printed, one a line; no file is written) or --check-text found a fault; 2 for a bad document
or a bad command line; 3 when the export was refused or cancelled (Ctrl-C).)";

// Ctrl-C asks the running export to stop; the exporter looks at the flag between nodes.
scene::HeadlessInterface* volatile runningHost = nullptr;

extern "C" void onInterrupt(int) {
    if (scene::HeadlessInterface* host = runningHost) {
        host->SetCancel(true);
    }
}

fs::path programDir() {
    std::error_code error;
    const fs::path self = fs::read_symlink("/proc/self/exe", error);
    return error ? fs::current_path() : self.parent_path();
}

// The host counts what the exporter shows: the error list and any error box mean a failed export.
// With statsJson the statistics box is kept for the JSON output instead of being shown.
// With stage times it reads the export's stages from its progress displays: the walk opens
// "Exporting scene...", the optimisation "Optimizations...", the write "Writing file..." and the
// display that the write closes ends it; the rest (statistics, release of the model) is "finish".
class ExportHost : public scene::HeadlessInterface {
public:
    using HeadlessInterface::HeadlessInterface;
    void ProgressStart(const std::string& title, bool showBar, host::ProgressCallback callback,
                       void* argument) override {
        if (stageTimes) {
            if (title == "Exporting scene...") {
                stageTimes->begin("walk");
            } else if (title == "Optimizations...") {
                stageTimes->begin("optimisation");
            } else if (title == "Writing file...") {
                stageTimes->begin("write");
            }
        }
        HeadlessInterface::ProgressStart(title, showBar, callback, argument);
    }
    void ProgressEnd() override {
        if (stageTimes && stageTimes->running() == "write") {
            stageTimes->begin("finish");
        }
        HeadlessInterface::ProgressEnd();
    }
    int MessageBox(host::HWND owner, const std::string& text, const std::string& caption,
                   unsigned type) override {
        // The viewer's "Error" box is shown too, but the file stands: only the error list fails
        // the export.
        if (caption == "Export errors") {
            ++errorsShown;
        }
        if (caption == "Export statistics" && statsJson) {
            statistics = text;
            return host::IDOK;
        }
        return HeadlessInterface::MessageBox(owner, text, caption, type);
    }
    int errorsShown = 0;
    bool statsJson = false;
    std::string statistics;
    scene::StageTimes* stageTimes = nullptr;
};

// A configuration directory for one run: the user's settings with the overrides applied, and the
// user's aux_func.lua. Removed when the run ends.
class RunConfigDir {
public:
    ~RunConfigDir() {
        if (!path_.empty()) {
            std::error_code error;
            fs::remove_all(path_, error);
        }
    }
    // Empty text on success, else the reason.
    std::string make(const fs::path& userDir, const UserSettings& settings) {
        std::string pattern = (fs::temp_directory_path() / "nqfexport-cfg-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) {
            return "can't make a temporary configuration directory in " + fs::temp_directory_path().string();
        }
        path_ = pattern;
        std::error_code error;
        if (fs::exists(userDir / "aux_func.lua", error)) {
            fs::copy_file(userDir / "aux_func.lua", path_ / "aux_func.lua", error);
            if (error) {
                return "can't copy aux_func.lua: " + error.message();
            }
        }
        if (!settings.save(path_ / "nqfexp.cfg")) {
            return "can't write the settings of this run to " + (path_ / "nqfexp.cfg").string();
        }
        return {};
    }
    const fs::path& path() const { return path_; }

private:
    fs::path path_;
};

// --check-text: the text of a file, or of stdin for "-".
int checkText(const std::string& source, const std::string& configDir, const UserSettings& settings) {
    std::string text;
    if (source == "-") {
        text.assign(std::istreambuf_iterator<char>(std::cin), {});
    } else {
        std::ifstream in(source, std::ios::binary);
        if (!in) {
            std::cerr << "nqfexport: can't read " << source << "\n";
            return 2;
        }
        text.assign(std::istreambuf_iterator<char>(in), {});
    }
    lu::setPluginConfigDir(configDir);
    try {
        std::cout << exporter::describeNodeText(text, settings.smoothNormals());
    } catch (const nq::ExtException& e) {
        std::cerr << e.message() << "\n";
        return 1;
    }
    return 0;
}

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
    bool timings = false;
    std::vector<std::string> overrides;
    std::string stats = "text";
    std::string checkSource;
    app.add_option("SCENE", scenePath, "The scene document (JSON)")->check(CLI::ExistingFile);
    app.add_option("-o,--output", target, "The .nqf file to write (default: beside the scene document)");
    app.add_option(
        "--plugcfg", configDir,
        "The plug-in configuration directory with nqfexp.cfg and aux_func.lua (default: per user)");
    app.add_flag("--verbose", verbose, "Progress as plain lines");
    app.add_flag("--timings", timings,
                 "Print the time of each stage to stderr: load, walk, optimisation, write, finish");
    app.add_flag("--options", options, "Open the options dialog over the settings file and exit");
    app.add_option("--set", overrides, "Change a setting for this run only: NAME=VALUE (repeatable)")
        ->type_name("NAME=VALUE");
    app.add_option("--stats", stats, "How to print the statistics: text (stderr) or json (stdout)")
        ->check(CLI::IsMember({"text", "json"}));
    app.add_option("--check-text", checkSource,
                   "Evaluate one node's user-defined text from FILE (- for stdin) and print the result")
        ->type_name("FILE");
    try {
        app.parse(argc, argv);
        if (scenePath.empty() && !options && checkSource.empty()) {
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

    // The user's settings with this run's overrides; the settings file itself is not changed.
    UserSettings settings;
    settings.load(fs::path(configDir) / "nqfexp.cfg");
    for (const std::string& assignment : overrides) {
        if (std::optional<std::string> fault = applySettingText(settings, assignment)) {
            std::cerr << "nqfexport: --set " << assignment << ": " << *fault << "\n";
            return 2;
        }
    }
    if (!checkSource.empty()) {
        return checkText(checkSource, configDir, settings);
    }

    if (options) {
#ifdef NQ_HAVE_UI
        return runOptionsDialog(argc, argv, configDir);
#else
        std::cerr << "nqfexport: this build has no options dialog (Qt 6 was not found)\n";
        return 2;
#endif
    }

    scene::StageTimes stageTimes;
    stageTimes.begin("load");
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

    // The exporter reads its settings from the configuration directory the host names; with
    // overrides that is a copy made for this run.
    RunConfigDir runConfig;
    if (!overrides.empty()) {
        if (std::string fault = runConfig.make(configDir, settings); !fault.empty()) {
            std::cerr << "nqfexport: " << fault << "\n";
            return 2;
        }
    }

    scene::HeadlessInterface::Options hostOptions;
    hostOptions.verbose = verbose;
    hostOptions.plugCfgDir = overrides.empty() ? configDir : runConfig.path().string();
    ExportHost ip(*scene, hostOptions);
    ip.statsJson = stats == "json";
    ip.stageTimes = timings ? &stageTimes : nullptr;
    host::SetCOREInterface(&ip);

    std::error_code error;
    const auto before =
        fs::exists(target, error) ? fs::last_write_time(target, error) : fs::file_time_type::min();
    runningHost = &ip;
    std::signal(SIGINT, onInterrupt);
    const int result = exporter->DoExport(target.c_str(), nullptr, &ip, true, 0);
    std::signal(SIGINT, SIG_DFL);
    runningHost = nullptr;
    exporter.reset();
    host::SetCOREInterface(nullptr);
    if (timings) {
        // The scene's release belongs to the run's cost too.
        scene.reset();
        stageTimes.end();
        std::cerr << stageTimes.report();
    }

    if (result == 0) {
        std::cerr << "nqfexport: the exporter refused to start: an export is already running\n";
        return 3;
    }
    if (ip.GetCancel()) {
        std::cerr << "nqfexport: cancelled; no file was written\n";
        return 3;
    }
    if (ip.errorsShown > 0) {
        return 1;
    }

    const bool written = fs::exists(target, error) && fs::last_write_time(target, error) >= before;
    if (!written) {
        std::cerr << "nqfexport: no file was written\n";
        return 1;
    }
    if (ip.statsJson && !ip.statistics.empty()) {
        std::cout << scene::statisticsTextToJson(ip.statistics) << "\n";
    }
    std::cerr << "nqfexport: wrote " << target << "\n";
    return 0;
}
