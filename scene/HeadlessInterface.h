#pragma once
// The host operations of the headless host over a loaded scene. It has no windows: progress goes
// to the error stream (a bar on a terminal, plain lines when verbose, nothing otherwise), a
// message box prints "caption: text" there and answers with its first button, and the viewer
// start runs the program directly.

#include <atomic>
#include <iostream>
#include <optional>
#include <string>

#include "host/Interface.h"
#include "scene/ProgressDisplay.h"
#include "scene/Scene.h"

namespace scene {

class HeadlessInterface : public host::Interface {
public:
    struct Options {
        // Where progress and messages go.
        std::ostream* err = &std::cerr;
        // Whether err is a terminal; unset: whether the process's stderr is one.
        std::optional<bool> terminal;
        // Progress as plain lines.
        bool verbose = false;
        // The plug-in configuration directory (directory number 9); empty: the per-user default
        // of host::defaultPluginConfigDir.
        std::string plugCfgDir;
    };

    HeadlessInterface(Scene& scene, Options options);

    host::TimeValue GetTime() override { return scene_.time; }
    int GetTicksPerFrame() override { return scene_.ticksPerFrame; }
    std::string GetCurFilePath() override { return scene_.filePath; }
    host::INode* GetRootNode() override { return &scene_.root; }

    void ProgressStart(const std::string& title, bool showBar, host::ProgressCallback callback,
                       void* argument) override;
    void ProgressUpdate(int percent, bool showPercent = true, const char* title = nullptr) override;
    void ProgressEnd() override;
    bool GetCancel() override { return cancel_.load(); }
    void SetCancel(bool cancel) override { cancel_.store(cancel); }

    host::HWND GetMAXHWnd() override { return nullptr; }
    host::HWND GetActiveWindow() override { return nullptr; }
    std::string GetDir(int which) override;

    int MessageBox(host::HWND owner, const std::string& text, const std::string& caption,
                   unsigned type) override;
    int ShellExecute(host::HWND owner, const char* operation, const std::string& file,
                     const std::string& parameters, const std::string& directory, int showCmd) override;

private:
    Scene& scene_;
    std::ostream& err_;
    std::string plugCfgDir_;
    ProgressDisplay progress_;
    std::atomic<bool> cancel_{false};
};

}  // namespace scene
