#pragma once
// The running host as the exporter sees it: the scene, its time and file, the progress display,
// modal messages, the start of external programs and the host's directories.
//
// Text crosses this interface as UTF-8 std::string. A host whose own text is wide converts it
// at once, in its adapter, so nothing past this boundary sees wide text. Where the system
// headers define MessageBox and ShellExecute as macros, an adapter undefines them before it
// includes this header.

#include <string>

#include "host/Types.h"

namespace host {

class INode;

// The function the progress display may call while it is shown; the exporter passes one that
// returns 0 and a null argument.
using ProgressCallback = unsigned long (*)(void* argument);

class Interface {
public:
    virtual ~Interface() = default;

    // The current scene time.
    virtual TimeValue GetTime() = 0;
    virtual int GetTicksPerFrame() = 0;
    // Full path of the scene file; empty for a scene that was never saved.
    virtual std::string GetCurFilePath() = 0;
    // The invisible root of the scene.
    virtual INode* GetRootNode() = 0;

    // Opens the progress display. A second start while one is open replaces it.
    virtual void ProgressStart(const std::string& title, bool showBar, ProgressCallback callback,
                               void* argument) = 0;
    // Moves the bar to percent; a null title keeps the title.
    virtual void ProgressUpdate(int percent, bool showPercent = true, const char* title = nullptr) = 0;
    // Closes the display; a call with none open does nothing.
    virtual void ProgressEnd() = 0;
    // Whether the user asked to cancel.
    virtual bool GetCancel() = 0;
    virtual void SetCancel(bool cancel) = 0;

    // The window that owns modal dialogs.
    virtual HWND GetMAXHWnd() = 0;
    // The window that has the focus now.
    virtual HWND GetActiveWindow() = 0;
    // One of the host's directories, by number (APP_PLUGCFG_DIR: the plug-in configuration
    // directory); UTF-8, without a trailing separator. Empty for numbers the host does not know.
    virtual std::string GetDir(int which) = 0;

    // A modal message with the buttons and icon of type (MB_* of host/Constants.h); returns the
    // button chosen (ID* of host/Constants.h).
    virtual int MessageBox(HWND owner, const std::string& text, const std::string& caption,
                           unsigned type) = 0;
    // Starts the program file with the parameters (one command line, double quotes group
    // words) in the working directory directory (empty: the current one). operation is null or
    // "open". Returns a value above 32 when the program started, and an error number of 32
    // or below otherwise.
    virtual int ShellExecute(HWND owner, const char* operation, const std::string& file,
                             const std::string& parameters, const std::string& directory, int showCmd) = 0;
};

// The Interface of the running host, or null when none is registered. The host registers
// itself at start and clears the registration when it ends.
Interface* GetCOREInterface();
void SetCOREInterface(Interface* ip);

// Ticks per frame of the running host; 160 (30 frames per second) when none is registered.
int GetTicksPerFrame();

}  // namespace host
