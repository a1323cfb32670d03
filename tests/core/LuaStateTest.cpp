#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <lua.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "core/Log.h"
#include "core/LuaState.h"

namespace nq {
namespace {

using ::testing::HasSubstr;

// Small limits keep the runaway cases quick.
LuaLimits smallLimits() {
    LuaLimits limits;
    limits.memoryCap = std::size_t{8} << 20;
    limits.largestBlock = std::size_t{2} << 20;
    limits.instructionBudget = 200'000;
    return limits;
}

class LuaStateTest : public ::testing::Test {
protected:
    // Runs `result = (expression)` and gives tostring of the result, or the error message.
    std::string eval(const std::string& expression) { return run("result = tostring(" + expression + ")"); }
    std::string run(const std::string& chunk) {
        const int top = lua_gettop(lua.state());
        if (auto error = lua.runChunk(chunk, "=test")) {
            EXPECT_EQ(lua_gettop(lua.state()), top);
            return "error: " + *error;
        }
        EXPECT_EQ(lua_gettop(lua.state()), top + 1);
        lua_getfield(lua.state(), -1, "result");
        std::string result = lua_isstring(lua.state(), -1) ? lua_tostring(lua.state(), -1) : "(none)";
        lua_settop(lua.state(), top);
        return result;
    }

    LuaState lua{"test state", smallLimits()};
};

TEST_F(LuaStateTest, DangerousFunctionsAreAbsent) {
    std::istringstream names(
        "io os package debug require module load loadstring loadfile dofile getfenv setfenv newproxy "
        "collectgarbage gcinfo pcall xpcall coroutine rawset string.dump string.find string.match "
        "string.gmatch string.gsub table.sort _G.os _G.loadstring (\"\").dump");
    int count = 0;
    for (std::string name; names >> name; ++count) {
        EXPECT_EQ(eval("type(" + name + ")"), "nil") << name;
    }
    EXPECT_EQ(count, 28);
    // What texts do need is there.
    EXPECT_EQ(eval("string.format('%d-%s', 3, ('ab'):rep(2)) .. math.floor(2.5) .. select('#', 1, 2)"),
              "3-abab22");
    EXPECT_EQ(eval("table.concat({1, 2}, ',') .. unpack({'x'}) .. tonumber('7')"), "1,2x7");
}

TEST_F(LuaStateTest, GlobalsAndLibrariesCannotBeReachedForWriting) {
    // Each chunk's _G is its own environment, and no metatable leads past it.
    EXPECT_EQ(eval("_G == getfenv"), "false");
    EXPECT_EQ(eval("rawget(_G, 'string')"), "nil");
    EXPECT_EQ(eval("getmetatable(_G)"), "false");
    EXPECT_EQ(eval("getmetatable('')"), "false");
    EXPECT_EQ(eval("getmetatable(string)"), "false");

    EXPECT_THAT(run("string.rep = nil"), HasSubstr("attempt to change a read-only library table"));
    EXPECT_THAT(run("math.pi = 3"), HasSubstr("attempt to change a read-only library table"));
    EXPECT_THAT(run("setmetatable(string, nil)"), HasSubstr("cannot change a protected metatable"));
    EXPECT_EQ(eval("('x'):rep(3) .. string.rep('y', 2) .. math.pi"), "xxxyy3.1415926535898");
}

// Chunks and what they end in, the result or the exact error; after each the state still works.
TEST_F(LuaStateTest, ChunksEndInTheirResultOrTheirExactError) {
    const std::string budget = "error: instruction budget of 200000 instructions reached";
    const std::string cap = "error: memory cap reached (8388608 bytes in all, 2097152 in one block)";
    const std::pair<std::string, std::string> cases[] = {
        // Global writes stay in their chunk.
        {"tostring = nil; result = 'done'", "done"},
        {"x = 5", "(none)"},
        {"result = tostring(x)", "nil"},
        {"while true do end", budget},
        {"local n = 0 repeat n = n + 1 until false", budget},
        // The budget is per call: each of these alone stays below it, together they would not.
        {"local n = 0 for i = 1, 40000 do n = n + i end result = n", "800020000"},
        {"local n = 0 for i = 1, 40000 do n = n + i end result = n", "800020000"},
        {"local n = 0 for i = 1, 40000 do n = n + i end result = n", "800020000"},
        {"local s = ('x'):rep(2^30)", cap},
        {"local s = 'x' for i = 1, 40 do s = s .. s end", cap},
        {"local t = {} for i = 1, 1e9 do t[i] = (i .. 'x'):rep(1000) end", cap},
        // An empty repetition costs nothing, however many.
        {"result = #(''):rep(1e18) + #('x'):rep(-5)", "0"},
        // Error objects are described without running them.
        {"error({})", "error: (error object is a table value)"},
        {"error(setmetatable({}, {__tostring = function() while true do end end}))",
         "error: (error object is a table value)"},
        {"error()", "error: (error object is a nil value)"},
        {"error(1.5, 0)", "error: 1.5"},
        {"error('plain', 0)", "error: plain"},
        {"local x = nil + 1", "error: test:1: attempt to perform arithmetic on a nil value"},
    };
    for (const auto& [chunk, expected] : cases) {
        SCOPED_TRACE(chunk);
        EXPECT_EQ(run(chunk), expected);
        EXPECT_EQ(eval("('ab'):rep(3)"), "ababab");
    }
    // The garbage of the failed texts has been collected.
    EXPECT_LT(lua.memoryInUse(), std::size_t{512} << 10);
}

TEST_F(LuaStateTest, DeepRecursionEndsCleanly) {
    EXPECT_THAT(run("local function f() return 1 + f() end f()"), HasSubstr("stack overflow"));
    // Recursion through metamethods goes through C and is cut by Lua's C-call limit.
    EXPECT_THAT(run("local t = setmetatable({}, {}) getmetatable(t).__index = function(s, k) return s[k] end "
                    "result = t.x"),
                HasSubstr("stack overflow"));
    EXPECT_EQ(eval("1 + 1"), "2");
}

TEST_F(LuaStateTest, LibraryTimeIsBoundedToo) {
    LuaLimits limits = smallLimits();
    limits.instructionBudget = 1'000'000'000;
    limits.timeLimitMs = 100;
    LuaState slow("slow", limits);
    // Each comparison walks a megabyte in C, which the instruction count does not see.
    auto error = slow.runChunk(
        "local a = ('x'):rep(2^20) local b = a .. 'y' while true do local c = a < b end", "=slow");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(*error, "time limit of 100 ms reached");
    // Long strings that differ only where Lua's string hash does not look all fall into a few
    // chains of the string table, and each new one is compared with a whole chain.
    error = slow.runChunk("local t, x = {}, ('x'):rep(1000) for i = 1, 1e9 do t[i] = x .. (i % 1000) end",
                          "=slow");
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(*error, "time limit of 100 ms reached");
}

int chargeForever(lua_State* L) {
    for (;;) {
        LuaState::chargeBudget(L, 1000);
    }
}

int pushTwo(lua_State* L) {
    lua_pushinteger(L, static_cast<lua_Integer>(lua_gettop(L)));
    lua_pushlightuserdata(L, lua_touserdata(L, 1));
    return 2;
}

TEST_F(LuaStateTest, CallPassesArgumentsAndKeepsTheStackBalanced) {
    lua_State* L = lua.state();
    const int top = lua_gettop(L);
    int marker = 0;
    lua_pushinteger(L, 10);
    lua_pushinteger(L, 20);
    ASSERT_FALSE(lua.call(pushTwo, &marker, 2, 2).has_value());
    ASSERT_EQ(lua_gettop(L), top + 2);
    EXPECT_EQ(lua_tointeger(L, -2), 3);  // the marker and the two arguments
    EXPECT_EQ(lua_touserdata(L, -1), &marker);
    lua_settop(L, top);

    // Work done in C is charged against the same budget.
    EXPECT_EQ(lua.call(chargeForever, nullptr, 0, 0), "instruction budget of 200000 instructions reached");
    EXPECT_EQ(lua_gettop(L), top);
}

TEST_F(LuaStateTest, PrintGoesToTheLog) {
    std::vector<std::string> lines;
    LogSink previous = setLogSink([&](std::string_view source, int, std::string_view text) {
        lines.push_back(std::string(source) + ": " + std::string(text));
    });
    setLogToStderr(false);
    run("print('a', 1, {}, nil)");
    setLogToStderr(true);
    setLogSink(previous);
    EXPECT_EQ(lines, std::vector<std::string>({"test state: a\t1\ttable\tnil"}));
}

TEST_F(LuaStateTest, LoadFileRunsATrustedScriptInTheGlobals) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "nq-luastate-test.lua";
    std::ofstream(path) << "function twice(x) return 2 * x end\n";
    EXPECT_FALSE(lua.loadFile(path.string()).has_value());
    EXPECT_EQ(eval("twice(21)"), "42");

    std::ofstream(path) << "local x = \n";
    auto error = lua.loadFile(path.string());
    ASSERT_TRUE(error.has_value());
    EXPECT_EQ(*error, path.string() + ":2: unexpected symbol near '<eof>'");
    std::filesystem::remove(path);

    EXPECT_EQ(lua.loadFile(path.string()), "cannot open " + path.string() + ": No such file or directory");
}

}  // namespace
}  // namespace nq
