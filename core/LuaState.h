#pragma once
// A Lua 5.1 state for text that anyone can put into a scene.
//
// The state offers only a safe subset of the standard libraries (no io, os, package, debug, no
// loading of code, no way to reach the raw globals or the library tables for writing). Every
// protected call runs under an instruction budget, and the whole state under a memory cap, so that
// a runaway text ends in an error message instead of a hang or an exhausted process; the state
// stays usable afterwards.
//
// Lua reports errors by longjmp. Everything that may raise a Lua error therefore happens inside
// call(), whose C functions must hold no C++ objects with destructors; outside it, callers use only
// the API functions that neither allocate nor raise (lua_rawgeti, lua_objlen, lua_tolstring on
// strings, lua_settop, lua_type and the like).

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct lua_State;

namespace nq {

struct LuaLimits {
    // Bytes that the state may hold at once, its libraries included.
    std::size_t memoryCap = std::size_t{32} << 20;
    // Bytes in one block. Single instructions and library calls work on whole strings; keeping
    // every string below this size keeps the cost of one instruction small, so that the budget
    // below also bounds the time.
    std::size_t largestBlock = std::size_t{4} << 20;
    // Lua virtual machine instructions per call(), counted in steps of a hundred.
    std::uint64_t instructionBudget = 10'000'000;
    // Wall-clock time per call(), checked with the instruction count: a last guard against
    // library functions whose work the count does not see.
    std::uint32_t timeLimitMs = 2000;
};

class LuaState {
public:
    using CFunction = int (*)(lua_State*);

    // Creates the state under a name (used in its log lines) and opens the sandbox's libraries.
    // Throws nq::ExtException if even that fails.
    explicit LuaState(std::string name, LuaLimits limits = {});
    ~LuaState();
    LuaState(const LuaState&) = delete;
    LuaState& operator=(const LuaState&) = delete;

    lua_State* state() const noexcept { return L_; }
    const std::string& name() const noexcept { return name_; }
    const LuaLimits& limits() const noexcept { return limits_; }
    std::size_t memoryInUse() const noexcept;

    // Calls f in protected mode under a fresh instruction budget. f finds ud as a light userdata
    // at index 1, followed by the nargs values taken from the top of the stack. On success the
    // nresults results stay on the stack and the result is empty; on failure nothing is left of
    // the call and the result is the error message.
    std::optional<std::string> call(CFunction f, void* ud, int nargs, int nresults);

    // Loads and runs a trusted script file in the state's globals (the functions it defines
    // become visible to every later text). Empty on success, else Lua's reason.
    std::optional<std::string> loadFile(const std::string& path);

    // Compiles text as a chunk named chunkName and runs it in a fresh environment: its global
    // writes land there, its global reads fall through to the state's globals. On success the
    // environment table is left on the top of the stack.
    std::optional<std::string> runChunk(std::string_view text, const std::string& chunkName);

    // For C functions running inside call(): spends units of the instruction budget on work that
    // the virtual machine does not count (walking a table from C, for instance). Raises the
    // budget error when it is used up.
    static void chargeBudget(lua_State* L, std::uint64_t units);

    struct Control;

private:
    std::string describeError(int status);
    void collectGarbage() noexcept;

    std::string name_;
    LuaLimits limits_;
    Control* control_ = nullptr;
    lua_State* L_ = nullptr;
};

}  // namespace nq
