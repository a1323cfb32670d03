#include "scene/HeadlessInterface.h"

#include <unistd.h>

#include "host/Constants.h"
#include "host/HostServices.h"
#include "scene/StartProgram.h"

namespace scene {
namespace {

ProgressDisplay::Mode progressMode(const HeadlessInterface::Options& options) {
    bool terminal = options.terminal.value_or(isatty(STDERR_FILENO) == 1);
    if (options.verbose) {
        return ProgressDisplay::Mode::lines;
    }
    return terminal ? ProgressDisplay::Mode::bar : ProgressDisplay::Mode::silent;
}

// No one answers a headless message box, so it takes the first button of its set, the one a
// user who only confirms would press.
int firstButton(unsigned type) {
    switch (type & 0xF) {
        case host::MB_ABORTRETRYIGNORE:
            return host::IDABORT;
        case host::MB_YESNOCANCEL:
        case host::MB_YESNO:
            return host::IDYES;
        case host::MB_RETRYCANCEL:
            return host::IDRETRY;
        default:
            return host::IDOK;
    }
}

}  // namespace

HeadlessInterface::HeadlessInterface(Scene& scene, Options options)
    : scene_(scene),
      err_(*options.err),
      plugCfgDir_(options.plugCfgDir.empty() ? host::defaultPluginConfigDir() : options.plugCfgDir),
      progress_(*options.err, progressMode(options)) {}

void HeadlessInterface::ProgressStart(const std::string& title, bool showBar, host::ProgressCallback, void*) {
    progress_.start(title, showBar);
}

void HeadlessInterface::ProgressUpdate(int percent, bool showPercent, const char* title) {
    progress_.update(percent, showPercent, title);
}

void HeadlessInterface::ProgressEnd() {
    progress_.end();
}

std::string HeadlessInterface::GetDir(int which) {
    return which == host::APP_PLUGCFG_DIR ? plugCfgDir_ : "";
}

int HeadlessInterface::MessageBox(host::HWND, const std::string& text, const std::string& caption,
                                  unsigned type) {
    progress_.suspend();
    err_ << caption << ": " << text << '\n' << std::flush;
    progress_.resume();
    return firstButton(type);
}

// The show command means nothing without windows; the only operation is opening.
int HeadlessInterface::ShellExecute(host::HWND, const char* operation, const std::string& file,
                                    const std::string& parameters, const std::string& directory, int) {
    if (operation && std::string(operation) != "open") {
        return host::SE_ERR_NOASSOC;
    }
    return startProgram(file, parameters, directory);
}

}  // namespace scene
