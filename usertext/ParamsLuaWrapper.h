#pragma once
// The parser's one Lua state, made on first use and kept for the life of the plug-in. It is not
// protected: only the export thread uses it.

#include <memory>
#include <string>

#include "core/LuaState.h"

namespace lu {

// The host's plug-in configuration directory, where aux_func.lua is looked for when the state is
// made. Until a host sets it, the directory of the running program if aux_func.lua is there, else
// the installed copy's directory ../share/nqfexp beside it.
void setPluginConfigDir(std::string dir);
std::string pluginConfigDir();

class ParamsLuaWrapper {
public:
    static ParamsLuaWrapper& instance();

    // The state, made on first use: the sandbox, then aux_func.lua from the configuration
    // directory. A script that cannot be loaded fails this first use with "Can't load file: ";
    // the state stays made and the script is not tried again.
    nq::LuaState& operator()();

    bool made() const noexcept { return state_ != nullptr; }
    // The limits of the state; they apply from the next time it is made.
    void setLimits(const nq::LuaLimits& limits) { limits_ = limits; }
    // Drops the state, so that the next use makes it anew (a host whose configuration directory
    // changed, and tests).
    void reset() noexcept { state_.reset(); }

private:
    std::unique_ptr<nq::LuaState> state_;
    nq::LuaLimits limits_;
};

}  // namespace lu
