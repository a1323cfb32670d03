#pragma once
// Short ways to the running host for code that has no Interface at hand: a message box, the host's
// plug-in configuration directory (directory number 9 of its directory query) and the refresh of
// the viewport's node information. The first two go to the registered Interface
// (GetCOREInterface); a function or directory installed here takes precedence, which is how tests
// watch them, and without either the defaults suit a host without windows.

#include <functional>
#include <string>
#include <string_view>

namespace host {

using MessageBoxFunction = std::function<void(std::string_view title, std::string_view text)>;
using RefreshFunction = std::function<void()>;

// Shows a message to the user: through the installed function, else as a warning message box of
// the registered Interface, else by printing "title: text" on stderr.
void messageBox(std::string_view title, std::string_view text);
// Installs the message box of the host; an empty function restores the default. Returns the previous one.
MessageBoxFunction setMessageBoxFunction(MessageBoxFunction function);

// The plug-in configuration directory, UTF-8, without a trailing separator: the one set here,
// else the registered Interface's GetDir(APP_PLUGCFG_DIR), else defaultPluginConfigDir().
std::string pluginConfigDir();
// Sets the directory; an empty text clears it.
void setPluginConfigDir(std::string directory);
// The per-user directory for a host without one of its own: $XDG_CONFIG_HOME/nqfexp, else
// ~/.config/nqfexp, else the current directory.
std::string defaultPluginConfigDir();

// Redraws the node information the host shows in its viewports. By default does nothing.
void refreshNodeInfo();
RefreshFunction setRefreshNodeInfoFunction(RefreshFunction function);

}  // namespace host
