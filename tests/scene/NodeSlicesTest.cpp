// Reading a document node by node: the split at the top-level nodes, and faults that stay those
// of the reading of the whole document.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scene/NodeSlices.h"
#include "scene/SceneFault.h"
#include "scene/SceneLoader.h"

namespace {

std::vector<std::string> itemsOf(const scene::NodeSlices& slices) {
    return {slices.nodes.begin(), slices.nodes.end()};
}

// Strings with brackets, quotes and backslashes, moved across every place of the 64-byte blocks
// the scanner reads, must not end a node early or late.
TEST(NodeSlices, SplitsAtTheNodesWhereverStringsFall) {
    for (std::size_t shift = 0; shift < 140; ++shift) {
        const std::string pad(shift, ' ');
        const std::vector<std::string> nodes = {
            R"({"name": ")" + std::string(shift, 'x') + R"(]}\"[{\\", "userProps": "}"})",
            R"({"children": [{"name": "a\\"}, {"name": "\\\"}]"}]})",
            "{\"name\": \"" + std::string(shift % 70, '\\') + std::string(shift % 70, '\\') + "}\"}",
        };
        const std::string head = R"({"materials": [], "rootName": "nodes", "x": {"nodes": [1]}, "nodes":)";
        const std::string tail = R"(, "time": 0})";
        const std::string json =
            head + pad + "[ " + nodes[0] + pad + ",\n" + nodes[1] + "," + pad + nodes[2] + " ]" + tail;
        // The slices point into the document, which must outlive them.
        const simdjson::padded_string document(json);
        auto slices = scene::sliceNodes(document);
        ASSERT_TRUE(slices) << json;
        EXPECT_EQ(itemsOf(*slices), nodes) << json;
        EXPECT_EQ(std::string(slices->skeleton.data(), slices->skeleton.size()), head + pad + "[]" + tail);
    }
}

TEST(NodeSlices, LeavesOtherDocumentsToTheWholeReading) {
    for (const char* json : {
             R"({"materials": []})",              // no nodes
             R"({"nodes": []})",                  // nothing to split
             R"({"nodes": {"name": "a"}})",       // not an array
             R"({"nodes": [{}, 5]})",             // an item that is not an object
             R"({"nodes": [{} {}]})",             // a missing comma
             R"({"nodes": [{}, {"name": "a]"})",  // no closing bracket
             R"({"nodes": [{"name": "a})",        // an unclosed string
             R"(["nodes", [{}]])",                // the root is an array
             R"({"nod\u0065s": [{}]})",           // a key written with escapes
         }) {
        EXPECT_FALSE(scene::sliceNodes(simdjson::padded_string(std::string(json)))) << json;
    }
}

// A key with an escape is not split, so the same document read whole is the reference: every
// fault, its place and which of several comes first must be the same either way.
TEST(NodeSlices, FaultsAreThoseOfTheWholeReading) {
    const std::string deep = R"({"name": "a", "userProps": )";
    std::vector<std::string> bodies = {
        R"([{"name": "a"}, {"hidden": "yes"}, {"name": 5}])",
        R"([{"hidden": "yes"}, {"name": "a"}] , "time": 01)",           // a node fault, then a text fault
        R"([{"name": "a"}, {"name": "b"}], "time": "late")",            // the root's field after the nodes
        R"([{"name": "a"}, {"name": "b"}], "nodes": [{"name": "c"}])",  // repeated
        R"([{"name": "a"}, {"name": "b", "name": "c"}])",
        R"([{"name": "a"}, {"name": "b"}] } x)",
        R"([{"name": "a"}, {"name": "\u00e9\u0000"}, {"material": 3}])",
        "[{\"name\": \"a\"}, {\"name\": \"ab\xC3\x28\"}]",
    };
    // Around the nesting limit of the whole document: a faulty value nested deep inside a node,
    // and children nested as deep as the limit allows and one level more.
    for (int levels = 1016; levels <= 1026; ++levels) {
        bodies.push_back("[" + deep + std::string(levels, '[') + std::string(levels, ']') + "}]");
    }
    for (const std::string& body : bodies) {
        EXPECT_EQ(scenetest::faultIn("{\"nodes\":\n" + body + "}").described,
                  scenetest::faultIn("{\"nod\\u0065s\":\n" + body + "}").described);
    }
    // Children nested as deep as the whole document's limit allows are read, one level more is a
    // fault of the text, though each node alone would be within the limit.
    for (int levels : {510, 511}) {
        std::string node;
        for (int i = 0; i < levels; ++i) {
            node += R"({"children": [)";
        }
        node += "{}";
        for (int i = 0; i < levels; ++i) {
            node += "]}";
        }
        const std::string json = "{\"nodes\": [{}, " + node + "]}";
        if (levels == 510) {
            EXPECT_EQ(scene::parseScene(json)->root.children().size(), 2u);
        } else {
            EXPECT_EQ(scenetest::faultIn(json).message, "the document nests deeper than 1024 levels");
        }
    }
}

}  // namespace
