#pragma once
// The few services of the running host that the settings use: a message box, the host's plug-in
// configuration directory (directory number 9 of its directory query) and the refresh of the
// viewport's node information. The host installs its own at start; the defaults suit a host
// without windows. These move into the host interface as it grows.

#include <functional>
#include <string>
#include <string_view>

namespace host {

using MessageBoxFunction = std::function<void(std::string_view title, std::string_view text)>;
using RefreshFunction = std::function<void()>;

// Shows a message to the user. By default prints "title: text" on stderr.
void messageBox(std::string_view title, std::string_view text);
// Installs the message box of the host; an empty function restores the default. Returns the previous one.
MessageBoxFunction setMessageBoxFunction(MessageBoxFunction function);

// The plug-in configuration directory, UTF-8, without a trailing separator. By default the
// per-user directory $XDG_CONFIG_HOME/nqfexp (or ~/.config/nqfexp).
std::string pluginConfigDir();
void setPluginConfigDir(std::string directory);

// Redraws the node information the host shows in its viewports. By default does nothing.
void refreshNodeInfo();
RefreshFunction setRefreshNodeInfoFunction(RefreshFunction function);

}  // namespace host
