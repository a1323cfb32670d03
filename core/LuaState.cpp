#include "core/LuaState.h"

#include <cstdio>
#include <cstdlib>

#include <fmt/format.h>

#include "core/ExtException.h"
#include "core/LuaControl.h"

namespace nq {
namespace {

// The allocator enforces the cap. Lua 5.1 assumes that shrinking never fails, so only growth is
// refused; a refusal becomes Lua's memory error inside the protected call.
void* capAllocator(void* ud, void* block, std::size_t oldSize, std::size_t newSize) noexcept {
    auto& c = *static_cast<LuaState::Control*>(ud);
    if (newSize == 0) {
        std::free(block);
        c.used -= oldSize;
        return nullptr;
    }
    if (newSize > oldSize && c.capEnforced &&
        (newSize > c.limits.largestBlock || c.used - oldSize + newSize > c.limits.memoryCap)) {
        c.capReached = true;
        return nullptr;
    }
    void* grown = std::realloc(block, newSize);
    if (grown == nullptr) {
        return nullptr;
    }
    c.used = c.used - oldSize + newSize;
    return grown;
}

void raiseBudgetError(lua_State* L) {
    lua_pushliteral(L, "instruction budget reached");
    lua_error(L);
}

// Runs every hookStep instructions. Once the budget is gone it runs at every instruction, so that
// the error comes back at once if anything should swallow it.
void countHook(lua_State* L, lua_Debug*) {
    LuaState::Control& c = luaControl(L);
    c.spent += static_cast<std::uint64_t>(c.hookStep);
    if (c.spent >= c.limits.instructionBudget) {
        c.budgetReached = true;
    } else if (std::chrono::steady_clock::now() >= c.deadline) {
        c.timeReached = true;
    } else {
        return;
    }
    if (c.hookStep != 1) {
        c.hookStep = 1;
        lua_sethook(L, countHook, LUA_MASKCOUNT, 1);
    }
    raiseBudgetError(L);
}

struct Target {
    LuaState::CFunction function;
    void* ud;
};

// The one C function that call() runs: it swaps its own argument for the caller's and goes on as
// the caller's function. Made once, so that a call needs no allocation before it is protected.
int trampoline(lua_State* L) {
    auto* target = static_cast<Target*>(lua_touserdata(L, 1));
    lua_pushlightuserdata(L, target->ud);
    lua_replace(L, 1);
    return target->function(L);
}

int setUp(lua_State* L) {
    LuaState::Control& c = luaControl(L);
    openSandboxLibraries(L);
    lua_pushcfunction(L, trampoline);
    c.trampolineRef = luaL_ref(L, LUA_REGISTRYINDEX);
    // The metatable of every text's environment: reads fall through to the globals, and the
    // globals cannot be reached through getmetatable.
    lua_newtable(L);
    lua_pushvalue(L, LUA_GLOBALSINDEX);
    lua_setfield(L, -2, "__index");
    lua_pushboolean(L, 0);
    lua_setfield(L, -2, "__metatable");
    c.environmentMetaRef = luaL_ref(L, LUA_REGISTRYINDEX);
    return 0;
}

int loadAndRunFile(lua_State* L) {
    const auto* path = static_cast<const std::string*>(lua_touserdata(L, 1));
    if (luaL_loadfile(L, path->c_str()) != 0) {
        return lua_error(L);
    }
    lua_call(L, 0, 0);
    return 0;
}

struct ChunkArgs {
    const char* text;
    std::size_t size;
    const char* name;
    int environmentMetaRef;
};

int runInEnvironment(lua_State* L) {
    const auto* args = static_cast<const ChunkArgs*>(lua_touserdata(L, 1));
    if (luaL_loadbuffer(L, args->text, args->size, args->name) != 0) {
        return lua_error(L);
    }
    lua_newtable(L);
    lua_rawgeti(L, LUA_REGISTRYINDEX, args->environmentMetaRef);
    lua_setmetatable(L, -2);
    lua_pushvalue(L, -1);
    lua_setfield(L, -2, "_G");
    lua_pushvalue(L, -1);
    lua_setfenv(L, -3);
    lua_insert(L, -2);
    lua_call(L, 0, 0);
    return 1;
}

}  // namespace

LuaState::LuaState(std::string name, LuaLimits limits)
    : name_(std::move(name)), limits_(limits), control_(new Control) {
    control_->limits = limits_;
    control_->name = &name_;
    L_ = lua_newstate(capAllocator, control_);
    if (L_ == nullptr) {
        delete control_;
        throw ExtException(fmt::format("Can't create the Lua state '{}': not enough memory", name_));
    }
    int status = lua_cpcall(L_, setUp, nullptr);
    if (status != 0) {
        std::string reason = describeError(status);
        lua_close(L_);
        delete control_;
        throw ExtException(fmt::format("Can't create the Lua state '{}': {}", name_, reason));
    }
}

LuaState::~LuaState() {
    lua_close(L_);
    delete control_;
}

std::size_t LuaState::memoryInUse() const noexcept {
    return control_->used;
}

// Runs unprotected, as a protected call would itself need memory: with the cap lifted for the
// collection, and with no finalizers in this state, nothing in it can raise an error.
void LuaState::collectGarbage() noexcept {
    control_->capEnforced = false;
    lua_gc(L_, LUA_GCCOLLECT, 0);
    control_->capEnforced = true;
}

std::optional<std::string> LuaState::call(CFunction f, void* ud, int nargs, int nresults) {
    Control& c = *control_;
    // The collector paces itself by the memory in use, not by the cap: garbage that a big text
    // left would otherwise count against the next one.
    if (c.used > limits_.memoryCap / 2) {
        collectGarbage();
    }
    c.spent = 0;
    c.capReached = c.budgetReached = c.timeReached = false;
    c.deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(limits_.timeLimitMs);
    c.hookStep = 100;
    lua_sethook(L_, countHook, LUA_MASKCOUNT, c.hookStep);

    Target target{f, ud};
    lua_rawgeti(L_, LUA_REGISTRYINDEX, c.trampolineRef);
    lua_insert(L_, -(nargs + 1));
    lua_pushlightuserdata(L_, &target);
    lua_insert(L_, -(nargs + 1));
    int status = lua_pcall(L_, nargs + 1, nresults, 0);
    lua_sethook(L_, nullptr, 0, 0);
    if (status == 0) {
        return std::nullopt;
    }
    std::string message = describeError(status);
    // A failed text may have left the heap full of garbage; the next text starts with a clean one.
    collectGarbage();
    return message;
}

void LuaState::chargeBudget(lua_State* L, std::uint64_t units) {
    Control& c = luaControl(L);
    c.spent += units;
    if (c.spent >= c.limits.instructionBudget) {
        c.budgetReached = true;
        raiseBudgetError(L);
    }
}

std::optional<std::string> LuaState::loadFile(const std::string& path) {
    return call(loadAndRunFile, const_cast<std::string*>(&path), 0, 0);
}

std::optional<std::string> LuaState::runChunk(std::string_view text, const std::string& chunkName) {
    ChunkArgs args{text.data(), text.size(), chunkName.c_str(), control_->environmentMetaRef};
    return call(runInEnvironment, &args, 0, 1);
}

// Reads and pops the error object. The flags say better than Lua's own text why a call was cut
// short; an error object that is not text is never converted, as that could run user code.
std::string LuaState::describeError(int status) {
    std::string message;
    if (control_->capReached) {
        message = fmt::format("memory cap reached ({} bytes in all, {} in one block)", limits_.memoryCap,
                              limits_.largestBlock);
    } else if (control_->budgetReached) {
        message = fmt::format("instruction budget of {} instructions reached", limits_.instructionBudget);
    } else if (control_->timeReached) {
        message = fmt::format("time limit of {} ms reached", limits_.timeLimitMs);
    } else if (lua_type(L_, -1) == LUA_TSTRING) {
        std::size_t size = 0;
        const char* text = lua_tolstring(L_, -1, &size);
        message.assign(text, size);
    } else if (lua_type(L_, -1) == LUA_TNUMBER) {
        char text[64];
        std::snprintf(text, sizeof text, LUA_NUMBER_FMT, lua_tonumber(L_, -1));
        message = text;
    } else if (status == LUA_ERRMEM) {
        message = "not enough memory";
    } else {
        message = fmt::format("(error object is a {} value)", lua_typename(L_, lua_type(L_, -1)));
    }
    lua_pop(L_, 1);
    return message;
}

}  // namespace nq
