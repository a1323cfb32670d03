// Bad scene documents: each fault names its document path (or, for faults of the JSON text, its
// line and column) and the loader never returns a partial scene.

#include <gtest/gtest.h>

#include <string>

#include "scene/SceneFault.h"

namespace {

using scenetest::faultIn;
using scenetest::faultOf;

void expectFault(const std::string& json, const std::string& path, const std::string& message) {
    scenetest::Fault f = faultIn(json);
    EXPECT_EQ(f.path, path) << json;
    EXPECT_EQ(f.message, message) << json;
}

TEST(SceneErrors, WrongTypesNameTheirPath) {
    expectFault(R"({"nodes": [{}, {}, {}, {"children": [{"userProps": 5}]}]})",
                "nodes[3].children[0].userProps", "expected a string");
    expectFault(R"({"nodes": [{"hidden": "yes"}]})", "nodes[0].hidden", "expected true or false");
    expectFault(R"({"nodes": {"name": "a"}})", "nodes", "expected an array");
    expectFault(R"({"nodes": [[]]})", "nodes[0]", "expected an object");
    expectFault(R"([1, 2])", "", "expected an object");
    expectFault(R"({"time": 1.5})", "time", "expected an integer");
    expectFault(R"({"time": 2147483648})", "time", "expected an integer from -2147483648 to 2147483647");
    expectFault(R"({"time": 1e20})", "time", "expected an integer from -2147483648 to 2147483647");
    expectFault(R"({"time": 18446744073709551615})", "time",
                "expected an integer from -2147483648 to 2147483647");
    expectFault(R"({"ticksPerFrame": 0})", "ticksPerFrame", "expected an integer from 1 to 4800");
    expectFault(R"({"nodes": [{"localTM": [[1e39, 0, 0], [0, 1, 0], [0, 0, 1], [0, 0, 0]]}]})",
                "nodes[0].localTM[0][0]", "number out of the range of a 32-bit float");
    expectFault(R"({"materials": [{"name": null}]})", "materials[0].name", "expected a string");
}

TEST(SceneErrors, UnknownAndRepeatedFields) {
    expectFault(R"({"nodes": [{"name": "a", "hiden": true}]})", "nodes[0].hiden", "unknown field");
    expectFault(R"({"nodes": [{"name": "a", "name": "b"}]})", "nodes[0].name", "repeated field");
    expectFault(R"({"materials": [], "materials": []})", "materials", "repeated field");
    expectFault(R"({"nodes": [{"object": {"spline": {}}}]})", "nodes[0].object.spline", "unknown field");
}

TEST(SceneErrors, MissingRequiredStructure) {
    expectFault(R"({"nodes": [{"object": {"class": ["0x1234", 0]}}]})", "nodes[0].object.superClass",
                "required for an object of class (0x1234, 0x0), which the host does not know");
    expectFault(R"({"nodes": [{"object": {"superClass": "0x20"}}]})", "nodes[0].object.class",
                "required for an object of super class 0x20");
    expectFault(R"({"materials": [{"attributes": [{"name": "x"}]}]})", "materials[0].attributes[0].class",
                "required: a custom attribute is known by its class");
}

TEST(SceneErrors, ContradictoryObjects) {
    expectFault(R"({"nodes": [{"object": {"superClass": 16, "class": ["0x876234", 0]}}]})",
                "nodes[0].object.superClass",
                "0x10 does not match the class (0x876234, 0x0), whose super class is 0x50");
    expectFault(R"({"nodes": [{"object": {"superClass": "0x30", "box": {}}}]})", "nodes[0].object.box",
                "only helpers have a box");
    expectFault(R"({"nodes": [{"object": {"box": {"min": [0, 0]}}}]})", "nodes[0].object.box.min",
                "expected 3 numbers");
}

TEST(SceneErrors, BadMatrixSizes) {
    expectFault(R"({"nodes": [{"localTM": [[1, 0, 0], [0, 1, 0], [0, 0, 1]]}]})", "nodes[0].localTM",
                "expected a matrix of 4 rows");
    expectFault(R"({"nodes": [{"localTM": [[1, 0, 0], [0, 1], [0, 0, 1], [0, 0, 0]]}]})",
                "nodes[0].localTM[1]", "expected a row of 3 or 4 numbers");
    expectFault(R"({"nodes": [{"localTM": [1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0]}]})", "nodes[0].localTM",
                "expected a matrix of 4 rows");
    expectFault(
        R"({"nodes": [{"objectOffsetTM": [[1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0.5], [0, 0, 0, 1]]}]})",
        "nodes[0].objectOffsetTM[2][3]", "expected 0: the last column of a 4 by 4 matrix must be 0, 0, 0, 1");
    expectFault(R"({"nodes": [{"children": [{"localTM": [[1, 0, 0], [0, 1, 0], [0, 0, 1], [0, 0, "x"]]}]}]})",
                "nodes[0].children[0].localTM[3][2]", "expected a number");
}

TEST(SceneErrors, UnknownClassIdForms) {
    const std::string expectedPart =
        "expected a 32-bit unsigned number or a hexadecimal text such as \"0x876234\"";
    const std::string expectedPair = "expected a class id: a pair of parts such as [\"0x876234\", \"0x0\"]";
    expectFault(R"({"nodes": [{"object": {"class": ["0xZZ", 0]}}]})", "nodes[0].object.class[0]",
                expectedPart);
    expectFault(R"({"nodes": [{"object": {"class": [0, "876234"]}}]})", "nodes[0].object.class[1]",
                expectedPart);
    expectFault(R"({"nodes": [{"object": {"class": [-1, 0]}}]})", "nodes[0].object.class[0]", expectedPart);
    expectFault(R"({"nodes": [{"object": {"class": [4294967296, 0]}}]})", "nodes[0].object.class[0]",
                expectedPart);
    expectFault(R"({"nodes": [{"object": {"class": ["0x123456789", 0]}}]})", "nodes[0].object.class[0]",
                expectedPart);
    expectFault(R"({"nodes": [{"object": {"superClass": "0x"}}]})", "nodes[0].object.superClass",
                expectedPart);
    expectFault(R"({"nodes": [{"object": {"class": "dummy"}}]})", "nodes[0].object.class", expectedPair);
    expectFault(R"({"nodes": [{"object": {"class": [1, 2, 3]}}]})", "nodes[0].object.class", expectedPair);
}

TEST(SceneErrors, MaterialReferences) {
    expectFault(R"({"materials": [{}], "nodes": [{"material": 1}]})", "nodes[0].material",
                "no material 1: the document has 1 material");
    expectFault(R"({"nodes": [{"material": -1}]})", "nodes[0].material",
                "expected an integer from 0 to 2147483647");
    expectFault(
        R"({"materials": [{"subMaterials": [1]}, {"subMaterials": [null, 2]}, {"subMaterials": [0]}]})",
        "materials[2].subMaterials[0]", "material 0 holds itself through its sub-materials");
    expectFault(R"({"materials": [{"class": ["0x200", 0], "subMaterials": [0]}]})",
                "materials[0].subMaterials[0]", "material 0 holds itself through its sub-materials");
}

TEST(SceneErrors, FaultsOfTheTextGiveLineAndColumn) {
    const std::string syntax = "JSON syntax error: a missing or extra comma, colon, bracket or brace";
    struct Case {
        std::string json, message;
        int line, column;
    };
    // A surrogate half encoded as UTF-8 is not valid UTF-8 either; columns count characters.
    const Case cases[] = {
        {"{\"nodes\": [\n  {\"name\": \"ab\xC3\x28\"}]}", "invalid UTF-8", 2, 15},
        {"{\"filePath\": \"\xC3\xA9\xED\xA0\x80\"}", "invalid UTF-8", 1, 16},
        {"{\"time\": 5}\n  x", "unexpected text after the document", 2, 3},
        {"{} {}", "unexpected text after the document", 1, 4},
        {"{\"nodes\": [\n{\"name\": \"a\"}\n{\"name\": \"b\"}]}", syntax, 3, 1},
        {"{\"time\": 01}", "invalid number", 1, 10},
        {"{\"nodes\": [{\"hidden\": tru}]}", "invalid literal: expected true, false or null", 1, 23},
    };
    for (const Case& c : cases) {
        scenetest::Fault f = faultIn(c.json);
        EXPECT_EQ(f.path, "") << c.json;
        EXPECT_EQ(f.message, c.message) << c.json;
        EXPECT_EQ(f.line, c.line) << c.json;
        EXPECT_EQ(f.column, c.column) << c.json;
    }
    EXPECT_EQ(faultIn("{\"filePath\": \"a\\qb\"}").message, "invalid string");
    EXPECT_EQ(faultIn("{\"nodes\": [{}").message, syntax);
    EXPECT_EQ(faultIn("  \n ").message, "the document is empty");
    EXPECT_EQ(faultIn(std::string(3000, '[') + std::string(3000, ']')).message,
              "the document nests deeper than 1024 levels");
}

TEST(SceneErrors, DescribedForTheUser) {
    scenetest::Fault field = faultIn(R"({"nodes": [{"userProps": 1}]})");
    EXPECT_EQ(field.described, "ship.json: nodes[0].userProps: expected a string");
    EXPECT_EQ(field.what, "nodes[0].userProps: expected a string");
    scenetest::Fault text = faultIn("{}\n}");
    EXPECT_EQ(text.described, "ship.json:2:1: unexpected text after the document");
    EXPECT_EQ(text.what, "line 2, column 1: unexpected text after the document");
}

TEST(SceneErrors, UnreadableFile) {
    EXPECT_EQ(faultOf([] { scene::loadScene(NQ_BINARY_DIR "/no/such/scene.json"); }).message,
              "cannot open the scene document: No such file or directory");
    EXPECT_EQ(faultOf([] { scene::loadScene(NQ_SOURCE_DIR); }).message,
              "cannot read the scene document: Is a directory");
}

}  // namespace
