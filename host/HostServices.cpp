#include "host/HostServices.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <optional>
#include <utility>

#include "host/Constants.h"
#include "host/Interface.h"

namespace host {
namespace {

struct Services {
    std::mutex lock;
    MessageBoxFunction messageBox;
    RefreshFunction refreshNodeInfo;
    std::optional<std::string> pluginConfigDir;
};

Services& services() {
    static Services s;
    return s;
}

}  // namespace

std::string defaultPluginConfigDir() {
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg) {
        return std::string(xdg) + "/nqfexp";
    }
    if (const char* home = std::getenv("HOME"); home && *home) {
        return std::string(home) + "/.config/nqfexp";
    }
    return ".";
}

void messageBox(std::string_view title, std::string_view text) {
    MessageBoxFunction show;
    {
        std::lock_guard<std::mutex> guard(services().lock);
        show = services().messageBox;
    }
    if (show) {
        show(title, text);
        return;
    }
    if (Interface* ip = GetCOREInterface()) {
        ip->MessageBox(ip->GetMAXHWnd(), std::string(text), std::string(title), MB_OK | MB_ICONWARNING);
        return;
    }
    std::fprintf(stderr, "%.*s: %.*s\n", static_cast<int>(title.size()), title.data(),
                 static_cast<int>(text.size()), text.data());
}

MessageBoxFunction setMessageBoxFunction(MessageBoxFunction function) {
    std::lock_guard<std::mutex> guard(services().lock);
    std::swap(services().messageBox, function);
    return function;
}

std::string pluginConfigDir() {
    {
        std::lock_guard<std::mutex> guard(services().lock);
        if (services().pluginConfigDir) {
            return *services().pluginConfigDir;
        }
    }
    if (Interface* ip = GetCOREInterface()) {
        return ip->GetDir(APP_PLUGCFG_DIR);
    }
    return defaultPluginConfigDir();
}

void setPluginConfigDir(std::string directory) {
    std::lock_guard<std::mutex> guard(services().lock);
    if (directory.empty()) {
        services().pluginConfigDir.reset();
    } else {
        services().pluginConfigDir = std::move(directory);
    }
}

void refreshNodeInfo() {
    RefreshFunction refresh;
    {
        std::lock_guard<std::mutex> guard(services().lock);
        refresh = services().refreshNodeInfo;
    }
    if (refresh) {
        refresh();
    }
}

RefreshFunction setRefreshNodeInfoFunction(RefreshFunction function) {
    std::lock_guard<std::mutex> guard(services().lock);
    std::swap(services().refreshNodeInfo, function);
    return function;
}

}  // namespace host
