#pragma once
// The bookkeeping behind one nq::LuaState: memory in use, budget spent, and what ended the last
// call. It is the state's allocator argument, so that every C function of the state reaches it
// with lua_getallocf and without touching Lua's registry (which could allocate).

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include <lua.hpp>

#include "core/LuaState.h"

namespace nq {

struct LuaState::Control {
    LuaLimits limits;
    const std::string* name = nullptr;

    std::size_t used = 0;
    bool capEnforced = true;
    bool capReached = false;

    int hookStep = 100;
    std::uint64_t spent = 0;
    std::chrono::steady_clock::time_point deadline;
    bool budgetReached = false;
    bool timeReached = false;

    int trampolineRef = LUA_NOREF;
    int environmentMetaRef = LUA_NOREF;
};

inline LuaState::Control& luaControl(lua_State* L) noexcept {
    void* ud = nullptr;
    lua_getallocf(L, &ud);
    return *static_cast<LuaState::Control*>(ud);
}

// Opens the sandbox's libraries in L's globals. Runs inside a protected call.
int openSandboxLibraries(lua_State* L);

}  // namespace nq
