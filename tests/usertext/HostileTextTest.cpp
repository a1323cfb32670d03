// Texts that try to leave the sandbox or to exhaust the process. Each must end in the parser's
// failure with a clear text, create no file, and leave the state usable for the next text.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include <unistd.h>

#include "UserTextTestSupport.h"

namespace lu::test {
namespace {

struct HostileCase {
    const char* name;
    const char* text;     // CANARY stands for a file that the text tries to create
    const char* failure;  // part of the failure text, after "Parser error:"
};

std::ostream& operator<<(std::ostream& out, const HostileCase& c) {
    return out << c.name;
}

class HostileTextTest : public UserTextTest, public ::testing::WithParamInterface<HostileCase> {
protected:
    static std::string canary() {
        return (std::filesystem::temp_directory_path() / ("nq-hostile-" + std::to_string(::getpid())))
            .string();
    }
};

TEST_P(HostileTextTest, FailsCleanlyAndLeavesTheStateUsable) {
    std::string text = GetParam().text;
    if (std::size_t at = text.find("CANARY"); at != std::string::npos) {
        text.replace(at, 6, canary());
    }
    const int top = stackTop();

    const std::string message = failure(text);
    EXPECT_THAT(message, ::testing::StartsWith("Parser error:"));
    EXPECT_THAT(message, ::testing::HasSubstr(GetParam().failure));
    EXPECT_FALSE(std::filesystem::exists(canary()));

    EXPECT_EQ(stackTop(), top);
    const std::vector<Entry> after = parse("after = vec2(1, 2)");
    ASSERT_EQ(after.size(), 1u);
    EXPECT_EQ(after[0].second, Values({"vec2", "1", "2"}));
}

const HostileCase kHostileCases[] = {
    {"OsExecute", "key = os.execute('touch CANARY')", "attempt to index global 'os' (a nil value)"},
    {"IoOpen", "key = io.open('CANARY', 'w'):write('x')", "attempt to index global 'io' (a nil value)"},
    {"Require", "key = require('os').execute('touch CANARY')",
     "attempt to call global 'require' (a nil value)"},
    {"Loadstring", "key = loadstring(\"os.execute('touch CANARY')\")()",
     "attempt to call global 'loadstring' (a nil value)"},
    {"Load", "key = load(function() return nil end)", "attempt to call global 'load' (a nil value)"},
    {"Dofile", "key = dofile('/etc/passwd')", "attempt to call global 'dofile' (a nil value)"},
    {"Loadfile", "key = loadfile('/etc/passwd')", "attempt to call global 'loadfile' (a nil value)"},
    {"Setfenv", "key = setfenv(1, {os = 1})", "attempt to call global 'setfenv' (a nil value)"},
    {"Getfenv", "key = getfenv(0).os.execute('touch CANARY')",
     "attempt to call global 'getfenv' (a nil value)"},
    {"StringDump", "key = string.dump(vec2)", "attempt to call field 'dump' (a nil value)"},
    {"StringMetatable", "key = getmetatable('').__index.dump(vec2)", "attempt to index a boolean value"},
    {"EnvironmentMetatable", "key = getmetatable(_G).__index.os", "attempt to index a boolean value"},
    {"GlobalsTable", "key = _G.os.execute('touch CANARY')", "attempt to index field 'os' (a nil value)"},
    {"RawGlobals", "key = rawget(_G, 'io').open('CANARY', 'w')", "attempt to index a nil value"},
    {"LibraryWrite", "key = (function() string.rep = nil end)()",
     "attempt to change a read-only library table"},
    {"Coroutine", "key = coroutine.wrap(function() while true do end end)()",
     "attempt to index global 'coroutine' (a nil value)"},
    {"CatchTheBudget", "key = pcall(function() while true do end end)",
     "attempt to call global 'pcall' (a nil value)"},
    {"Collectgarbage", "key = collectgarbage('stop')",
     "attempt to call global 'collectgarbage' (a nil value)"},
    {"GigabyteRep", "key = ('x'):rep(2^30)",
     "memory cap reached (33554432 bytes in all, 4194304 in one block)"},
    {"GrowingConcatenation", "key = (function() local s = 'x' while true do s = s .. s end end)()",
     "memory cap reached"},
    {"EndlessLoop", "key = (function() while true do end end)()",
     "instruction budget of 10000000 instructions reached"},
    {"DeepRecursion", "key = (function() local function f(n) return f(n + 1) + 1 end return f(1) end)()",
     "stack overflow"},
    {"ErrorTable", "key = error({})", "(error object is a table value)"},
    {"ErrorTableWithToString",
     "key = error(setmetatable({}, {__tostring = function() while true do end end}))",
     "(error object is a table value)"},
    // The walk of the result is charged too: a table that holds itself, and one whose nesting
    // doubles the work at each level.
    {"SelfNestedTable", "key = (function() local t = {} t[1] = t return t end)()",
     "tables nested deeper than 100 levels"},
    {"ExplodingNesting", "key = (function() local t = {true} for i = 1, 60 do t = {t, t} end return t end)()",
     "instruction budget of 10000000 instructions reached"},
};

INSTANTIATE_TEST_SUITE_P(Sandbox, HostileTextTest, ::testing::ValuesIn(kHostileCases),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace lu::test
