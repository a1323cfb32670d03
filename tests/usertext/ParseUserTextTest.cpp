#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "UserTextTestSupport.h"

namespace lu::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST_F(UserTextTest, RightSidesBecomeKindAndTexts) {
    struct Case {
        const char* text;
        Values values;
    };
    const Case cases[] = {
        {"key = 1.5", {"float", "1.5"}},
        {"key = 2", {"float", "2"}},
        {"key = true", {"float", "1.0"}},
        {"key = false", {"float", "0.0"}},
        {"key = \"some text\"", {"string", "some text"}},
        // A string that Lua can read as a number counts as a number, written as it was given.
        {"key = \"0012\"", {"float", "0012"}},
        {"key = uint(7)", {"uint", "7"}},
        {"key = vec2(1, 2.5)", {"vec2", "1", "2.5"}},
        {"key = vec3(1, 2, 3)", {"vec3", "1", "2", "3"}},
        {"key = vec4(1, 2, 3, 4)", {"vec4", "1", "2", "3", "4"}},
        {"key = argument(3)", {"argument", "3"}},
        {"key = animation(3, 0.0, 1.0, 2.5, 4)", {"animation", "3", "0", "1", "2.5", "4"}},
        {"key = anim(0, 1)", {"anim", "0", "1"}},
        {"key = animation_vec2(0, 1.0, vec2(1, 2))", {"animation_vec2", "0", "1", "vec2", "1", "2"}},
        {"key = animation_vec3(1, 0, vec3(1, 2, 3))", {"animation_vec3", "1", "0", "vec3", "1", "2", "3"}},
        {"key = animation_vec4(1, 0, vec4(1, 2, 3, 4))",
         {"animation_vec4", "1", "0", "vec4", "1", "2", "3", "4"}},
        {"key = array(1, 2, 3)", {"array", "1", "2", "3"}},
        // Extra arguments are passed on for the handlers to refuse, not cut off.
        {"key = uint(1, 2)", {"uint", "1", "2"}},
        // Any Lua expression, and comments.
        {"key = 2 * 3 -- six\n", {"float", "6"}},
        {"key = \"a\" .. \"b\"", {"string", "ab"}},
        // Flattening keeps strings and numbers and skips other values.
        {"key = {\"kind\", true, {1, {\"x\"}}, print}", {"kind", "1", "x"}},
    };
    for (const Case& c : cases) {
        const std::vector<Entry> entries = parse(c.text);
        ASSERT_EQ(entries.size(), 1u) << c.text;
        EXPECT_EQ(entries[0].first, "key") << c.text;
        EXPECT_EQ(entries[0].second, c.values) << c.text;
    }
}

TEST_F(UserTextTest, SeveralFieldsGiveOneEntryEach) {
    std::vector<Entry> entries = parse("a=1; b=2");
    std::sort(entries.begin(), entries.end());
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0], Entry("a", {"float", "1"}));
    EXPECT_EQ(entries[1], Entry("b", {"float", "2"}));

    // The usual layout: one field a line, closed by ";". Positional values get their index as key.
    entries = parse("TYPE = \"RENDER|LOD\";\r\nSMOOTH_NORMALS = true;\n\"first\", 7");
    std::sort(entries.begin(), entries.end());
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries[0], Entry("1", {"string", "first"}));
    EXPECT_EQ(entries[1], Entry("2", {"float", "7"}));
    EXPECT_EQ(entries[2], Entry("SMOOTH_NORMALS", {"float", "1.0"}));
    EXPECT_EQ(entries[3], Entry("TYPE", {"string", "RENDER|LOD"}));

    // Nil makes no entry.
    EXPECT_TRUE(parse("key = nil").empty());
    EXPECT_EQ(parse("a = nil; b = 1"), (std::vector<Entry>{Entry("b", {"float", "1"})}));
}

// Texts that end in a failure with an exact text; each leaves the state's stack as it found it.
TEST_F(UserTextTest, ExactFailureTexts) {
    const std::pair<const char*, const char*> cases[] = {
        {"key = print", "Invalid right side of expression for variable: 'key'."},
        {"other = {}", "Invalid right side of expression for variable: 'other'."},
        {"t = {true, print}", "Invalid right side of expression for variable: 't'."},
        {"key = error(42)", "Parser error:[string \"p={key = error(42)};\"]:1: 42"},
        // Text that closes the table early leaves no table behind.
        {"} p = 1 --", "Parser error."},
        {"} p = nil --", "Parser error."},
    };
    const int top = stackTop();
    for (const auto& [text, message] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(failure(text), message);
        EXPECT_EQ(stackTop(), top);
    }
}

TEST_F(UserTextTest, GuidLinesAreDeleted) {
    std::vector<Entry> entries = parse("babylonjs_GUID = 1234-abcd-00-ff-99\nkey = 1");
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0], Entry("key", {"float", "1"}));

    EXPECT_EQ(removeGuidFragments("a=1;babylonjs_GUID=1-2-3-4-5;b=2;babylonjs_GUID  =\t x-y-z-w-v\n"),
              "a=1;;b=2;\n");
    // The last word is taken whole; what follows it stays.
    EXPECT_EQ(removeGuidFragments("babylonjs_GUID = a-b-c-d-e-f"), "-f");
    // Four words are no GUID.
    EXPECT_EQ(removeGuidFragments("babylonjs_GUID = a-b-c-d;"), "babylonjs_GUID = a-b-c-d;");
    EXPECT_EQ(removeGuidFragments("x = \"babylonjs_GUID\""), "x = \"babylonjs_GUID\"");
}

TEST_F(UserTextTest, GuidWithEndlessSpacesIsLeftToLua) {
    // The regular expression engine would recurse once per space and overflow the stack.
    const std::string text = "babylonjs_GUID" + std::string(1'000'000, ' ') + "= a-b-c-d-e";
    EXPECT_EQ(removeGuidFragments(text), text);
    EXPECT_THAT(failure(text), StartsWith("Parser error:"));
}

// Lua's own message, naming the chunk, for text that does not compile and for errors at run time.
TEST_F(UserTextTest, LuaErrorsNameTheChunk) {
    const std::string message = failure("key = vec2(1, 2");
    EXPECT_THAT(message, StartsWith("Parser error:[string \"p={key = vec2(1, 2};\"]:1:"));
    EXPECT_THAT(message, HasSubstr("expected"));
    EXPECT_THAT(
        failure("key = nosuch(1)"),
        StartsWith("Parser error:[string \"p={key = nosuch(1)};\"]:1: attempt to call global 'nosuch'"));
}

TEST_F(UserTextTest, FirstAcceptingHandlerTakesTheEntry) {
    nq::Ptr<RecordingHandler> vectors(new RecordingHandler({"vec2"}));
    nq::Ptr<RecordingHandler> floats(new RecordingHandler({"float", "vec2"}));
    parseUserText("a = vec2(1, 2); b = 1; c = \"dropped\"", {vectors, floats});
    ASSERT_EQ(vectors->entries.size(), 1u);
    EXPECT_EQ(vectors->entries[0].first, "a");
    ASSERT_EQ(floats->entries.size(), 1u);
    EXPECT_EQ(floats->entries[0].first, "b");
}

class ThrowingHandler : public FuncHandler {
public:
    bool accepts(const std::string& name, const Values&) override { return name == "bad"; }
    void process(const std::string&, const Values&) override { throw nq::ExtException("handler failed"); }
};

TEST_F(UserTextTest, StackIsRestoredInEveryCase) {
    const int top = stackTop();
    parse("a = 1");
    EXPECT_EQ(stackTop(), top);
    failure("a = (");
    EXPECT_EQ(stackTop(), top);

    nq::Ptr<RecordingHandler> recorder(new RecordingHandler);
    FuncHandlers handlers{nq::Ptr<FuncHandler>(new ThrowingHandler), recorder};
    EXPECT_EQ(failure("bad = 1; [1] = 2; [2] = 3", handlers), "handler failed");
    EXPECT_EQ(stackTop(), top);
}

// A failure stops the walk; what the handlers did before it stays. Positional fields are walked
// first and in order, which makes "before" known here.
TEST_F(UserTextTest, EntriesBeforeAFailureStay) {
    nq::Ptr<RecordingHandler> recorder(new RecordingHandler);
    EXPECT_EQ(failure("10, 20, {}, 40, 50", {recorder}),
              "Invalid right side of expression for variable: '3'.");
    ASSERT_EQ(recorder->entries.size(), 2u);
    EXPECT_EQ(recorder->entries[0], Entry("1", {"float", "10"}));
    EXPECT_EQ(recorder->entries[1], Entry("2", {"float", "20"}));
}

// Global writes of one text are not seen by the next, so a text cannot break the functions of
// aux_func.lua for later ones.
TEST_F(UserTextTest, TextsDoNotShareGlobals) {
    EXPECT_EQ(parse("a = (function() vec2 = nil; leftover = 5; return 1 end)()").size(), 1u);
    EXPECT_EQ(parse("b = vec2(1, 2)")[0].second, Values({"vec2", "1", "2"}));
    EXPECT_TRUE(parse("c = leftover").empty());
}

class AuxFuncFileTest : public UserTextTest {
protected:
    void SetUp() override {
        // Short, as Lua shortens long file names in its messages.
        static int count = 0;
        dir_ = std::filesystem::temp_directory_path() /
               ("nqaf" + std::to_string(::getpid()) + "-" + std::to_string(++count));
        std::filesystem::create_directories(dir_);
        setPluginConfigDir(dir_.string());
        ParamsLuaWrapper::instance().reset();
    }
    void TearDown() override {
        std::filesystem::remove_all(dir_);
        setPluginConfigDir(NQ_SOURCE_DIR "/usertext");
        ParamsLuaWrapper::instance().reset();
    }
    void writeScript(const std::string& content) { std::ofstream(dir_ / "aux_func.lua") << content; }
    std::string scriptPath() const { return (dir_ / "aux_func.lua").string(); }

    std::filesystem::path dir_;
};

TEST_F(AuxFuncFileTest, EmptyTextDoesNotMakeTheState) {
    parseUserText("", {});
    EXPECT_FALSE(ParamsLuaWrapper::instance().made());
    // So the script is first looked for at a use that needs it.
    writeScript("function vec2(...) return {\"vec2\", ...} end");
    EXPECT_EQ(parse("a = vec2(1, 2)")[0].second, Values({"vec2", "1", "2"}));
}

TEST_F(AuxFuncFileTest, MissingScriptFailsOnceAndIsNotRetried) {
    const std::string path = scriptPath();
    EXPECT_EQ(failure("a = 1"),
              "Can't load file: " + path + ". Reason: cannot open " + path + ": No such file or directory");
    EXPECT_TRUE(ParamsLuaWrapper::instance().made());
    // The state stays, without the script's functions, even once the file is there.
    writeScript("function vec2(...) return {\"vec2\", ...} end");
    EXPECT_EQ(parse("a = 1").size(), 1u);
    EXPECT_THAT(failure("a = vec2(1, 2)"), HasSubstr("attempt to call global 'vec2'"));
}

TEST_F(AuxFuncFileTest, BrokenScriptGivesLuasReason) {
    writeScript("function vec2(\n");
    EXPECT_THAT(failure("a = 1"), StartsWith("Can't load file: " + scriptPath() + ". Reason: " +
                                             scriptPath() + ":2: <name> or '...' expected near '<eof>'"));

    ParamsLuaWrapper::instance().reset();
    writeScript("error('not today')");
    EXPECT_EQ(failure("a = 1"),
              "Can't load file: " + scriptPath() + ". Reason: " + scriptPath() + ":1: not today");
}

TEST_F(AuxFuncFileTest, InstalledCopyBesideTheProgramIsFound) {
    // The build puts a copy next to its outputs; the one beside the top of the build tree is the
    // same file as the source.
    std::ifstream built(NQ_BINARY_DIR "/aux_func.lua");
    std::ifstream source(NQ_SOURCE_DIR "/usertext/aux_func.lua");
    std::string a((std::istreambuf_iterator<char>(built)), {});
    std::string b((std::istreambuf_iterator<char>(source)), {});
    EXPECT_FALSE(a.empty());
    EXPECT_EQ(a, b);
}

}  // namespace
}  // namespace lu::test
