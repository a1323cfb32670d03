// Each check of the reader, provoked once, with the exact message it gives.

#include <gtest/gtest.h>

#include <fmt/format.h>

#include "NqfSample.h"
#include "model/io/NqfReader.h"

using namespace model::io;
using namespace nqftest;

namespace {

std::string faultOf(const std::vector<std::uint8_t>& bytes) {
    try {
        readNqf(bytes);
    } catch (const ReadError& e) {
        return e.what();
    }
    return "no fault";
}

std::string faultOf(const NqfBytes& b) {
    return faultOf(b.file());
}

// A copy of the bytes with those at `offset` replaced.
std::vector<std::uint8_t> patched(std::vector<std::uint8_t> bytes, std::size_t offset,
                                  std::initializer_list<std::uint8_t> with) {
    std::copy(with.begin(), with.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    return bytes;
}

// Checks the exact fault of a file; "{}" in the message stands for the file offset of `bodyAt`.
void expectFault(const NqfBytes& b, std::size_t bodyAt, std::string_view message) {
    EXPECT_EQ(faultOf(b), fmt::format(fmt::runtime(message), b.at(bodyAt)));
}

// A file with one record in one group.
NqfBytes oneRecord(const std::string& group, const Writer& record) {
    return groupFile({{group, {record}}});
}

TEST(NqfReaderFault, Header) {
    EXPECT_EQ(faultOf(std::vector<std::uint8_t>{}),
              "error at byte 0 in header: expected 3 bytes of magic, found the end of the file");
    std::vector<std::uint8_t> bytes = groupFile({}).file();
    EXPECT_EQ(faultOf(patched(bytes, 2, {'X'})),
              "error at byte 0 in header: expected the magic \"NQF\", found the bytes 4E 51 58");
    EXPECT_EQ(faultOf(patched(bytes, 3, {11})),
              "error at byte 3 in header: expected format version 10, found 11");
    EXPECT_EQ(faultOf(patched(bytes, 5, {0xFF, 0xFF})),
              fmt::format("error at byte 5 in string table: expected a string table size whose entries fit "
                          "in the {} bytes left (at least 1 bytes each), found {}",
                          bytes.size() - 9, (bytes[7] << 16) + 0xFFFF));

    NqfBytes b = groupFile({});
    b.body[3] = 1;  // the reserved word after the table
    expectFault(b, 0, "error at byte {} in header: expected reserved word 0, found 16777216");

    bytes = groupFile({}).file();
    bytes.push_back(0);
    EXPECT_EQ(
        faultOf(bytes),
        fmt::format(
            "error at byte {} in file: expected the end of the file after the last group, found 1 more bytes",
            bytes.size() - 1));
}

TEST(NqfReaderFault, StringTable) {
    const NqfBytes valid = groupFile({});
    const std::size_t table = valid.tableSize();
    std::vector<std::uint8_t> bytes = valid.file();
    EXPECT_EQ(faultOf(patched(bytes, 9 + table - 1, {'x'})),
              fmt::format("error at byte {} in string table: expected a NUL byte at the end of the string "
                          "table, found 0x78",
                          9 + table - 1));
    // "model::RootNode" runs into the next string.
    EXPECT_EQ(faultOf(patched(bytes, 9 + 15, {'A'})),
              fmt::format("error at byte {} in root: expected the class name of the root record, found "
                          "\"model::RootNodeAmodel::Property<unsigned int>\"",
                          valid.at(8)));
    // An overlong form.
    EXPECT_EQ(faultOf(patched(bytes, 9 + 1, {0xC0})),
              "error at byte 10 in string table: expected UTF-8 text in a string, found the byte 0xC0");

    NqfBytes dup = groupFile({});
    dup.strings.push_back("model::RootNode");
    EXPECT_EQ(faultOf(dup), fmt::format("error at byte {} in string table: expected distinct strings, found "
                                        "\"model::RootNode\" a second time as string {}",
                                        9 + table, dup.strings.size() - 1));
    NqfBytes unused = groupFile({});
    unused.strings.push_back("spare");
    EXPECT_EQ(faultOf(unused), fmt::format("error at byte 9 in file: expected every string of the table in "
                                           "use, found 1 of {} strings never referred to",
                                           unused.strings.size()));

    // References must be in range, and the first reference to each string comes in table order.
    NqfBytes range = groupFile({});
    range.body[8] = 200;
    EXPECT_EQ(faultOf(range),
              fmt::format(
                  "error at byte {} in root: expected a string reference below {} for class name, found 200",
                  range.at(8), range.strings.size()));
    NqfBytes order = groupFile({});
    order.body[8] = 1;
    expectFault(order, 8,
                "error at byte {} in root: expected a string reference at most 0 for class name (strings are "
                "stored in order of first use), found 1");
}

TEST(NqfReaderFault, ClassNamesWhereTheyStand) {
    std::size_t at = 0;
    NqfBytes tree = treeFile({plainNode,
                              [&](NqfBytes& b) {
                                  at = b.size();
                                  head(b, "model::RenderNode", "r");
                              }},
                             {0xFFFFFFFF, 0}, {});
    expectFault(
        tree, at,
        "error at byte {} in tree[1]: expected the class name of a tree node, found \"model::RenderNode\"");

    NqfBytes shell = oneRecord("SHELL_NODES", [&](NqfBytes& b) {
        at = b.size();
        head(b, "model::RenderNode", "r");
    });
    expectFault(shell, at,
                "error at byte {} in SHELL_NODES[0]: expected the class name of a shell node, found "
                "\"model::RenderNode\"");

    // An animation node is saved under the narrowest of four names that fits its channels.
    // A channel counts only when it has keys: here position and scale keys, and an empty rotation channel.
    auto animation = [&](std::string_view cls, std::uint32_t scaleKeys) {
        return treeFile({plainNode,
                         [&, cls, scaleKeys](NqfBytes& b) {
                             at = b.size();
                             head(b, cls, "p");
                             b.identity64().f64s({0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1});
                             b.u32(1).u32(0).u32(1).f64(0).f64s({1, 2, 3});  // position: one key
                             b.u32(1).u32(0).u32(0);                         // rotation: no keys
                             b.u32(1).u32(0).u32(0).u32(scaleKeys);          // scale: second keys only
                             for (std::uint32_t k = 0; k < scaleKeys; ++k) {
                                 b.f64(0).f64s({1, 1, 1});
                             }
                         }},
                        {0xFFFFFFFF, 0}, {}, 1);
    };
    NqfBytes anim = animation("model::ArgPositionNode", 1);
    expectFault(anim, at,
                "error at byte {} in tree[1]: expected the class name \"model::ArgAnimationNode\" for keys "
                "in position and scale channels, found \"model::ArgPositionNode\"");
    EXPECT_EQ(faultOf(animation("model::ArgPositionNode", 0)), "no fault");

    NqfBytes version = treeFile({[&](NqfBytes& b) {
                                    head(b, "model::Node", "n", 0, 1, [&](NqfBytes& p) {
                                        at = p.size();
                                        p.sref("model::Property<float>").sref("__VERSION__").f32(1);
                                    });
                                }},
                                {0xFFFFFFFF}, {});
    expectFault(version, at,
                "error at byte {} in tree[0].properties[0]: expected the class \"model::Property<unsigned "
                "int>\" for the class version \"__VERSION__\", found \"model::Property<float>\"");
}

TEST(NqfReaderFault, TreeAndGroups) {
    NqfBytes first = treeFile({plainNode}, {0}, {});
    expectFault(first, first.size() - 8,
                "error at byte {} in parents[0]: expected 0xFFFFFFFF for the tree's root, found 0");
    // 0 -> 1 -> 2, then 3 under 2's sibling position is fine, but a parent below 3 that is not
    // an ancestor of 2 breaks pre-order.
    NqfBytes order = treeFile({plainNode, plainNode, plainNode, plainNode}, {0xFFFFFFFF, 0, 1, 3}, {});
    expectFault(order, order.size() - 8,
                "error at byte {} in parents[3]: expected the index of node 2 or of one of its ancestors "
                "(the tree is in pre-order), found 3");
    NqfBytes link = oneRecord("CONNECTORS", [](NqfBytes& b) {
        head(b, "model::Connector", "c");
        b.u32(2).u32(0);
    });
    expectFault(
        link, link.size() - 8,
        "error at byte {} in CONNECTORS[0]: expected a tree node index below 2 for control node, found 2");

    NqfBytes five = groupFile({});
    five.body[five.size() - 4] = 5;
    expectFault(five, five.size() - 4,
                "error at byte {} in groups: expected a group count of 0 to 4, found 5");
    NqfBytes empty = groupFile({{"CONNECTORS", {}}});
    expectFault(empty, empty.size() - 4,
                "error at byte {} in groups[0]: expected a non-empty group (empty groups are left out), "
                "found 0 nodes");
    NqfBytes after = groupFile({{"RENDER_NODES", {[](NqfBytes& b) {
                                     renderHead(b, "model::RenderNode", "r");
                                     b.u32(0);
                                     vertices(b, 0, 0);
                                     indices(b, 0, {});
                                 }}},
                                {"RENDER_NODES", {}}});
    expectFault(
        after, after.size() - 8,
        "error at byte {} in groups[1]: expected no group after \"RENDER_NODES\", found \"RENDER_NODES\"");
    const Writer connector = [](NqfBytes& b) {
        head(b, "model::Connector", "c");
        b.u32(1).u32(0);
    };
    NqfBytes swapped = groupFile({{"LIGHT_NODES", {[](NqfBytes& b) {
                                       head(b, "model::LightNode", "l");
                                       b.u32(0).u8(0).u32(7);
                                       lightProperties(b, 7);
                                       b.u8(0);
                                   }}},
                                  {"CONNECTORS", {connector}}});
    // The last group: its name, its count and the 25-byte connector record.
    const std::size_t second = swapped.size() - 4 - 4 - 25;
    expectFault(
        swapped, second,
        "error at byte {} in groups[1]: expected the group name \"RENDER_NODES\", found \"CONNECTORS\"");
}

TEST(NqfReaderFault, Materials) {
    // Field offsets in the default material, from its start.
    enum : std::size_t {
        kCount = 0,
        kBlendingKey = 4,
        kDepthBias = 13,
        kFormatSize = 21,
        kChannelCount = 56,
        kShadows = 132,
        kFirstSlot = 141,
        kFirstName = 149,
        kSecondSlot = 233,
        kAnimatedClass = 157,
    };
    // Body offset of the first material: reserved word, root head with its version property, boxes, count.
    const std::size_t m = 8 + 28 + 144 + 4;
    struct Case {
        MaterialFields fields;
        std::size_t at;
        int patch;            // a byte written at `at` first, or -1
        std::string message;  // {} stands for the file offset of `at`
    };
    MaterialFields both;
    both.textures = {{2, "a.dds"}, {13, "b.dds"}};
    MaterialFields down;
    down.textures = {{4, "a.dds"}, {3, "b.dds"}};
    MaterialFields unnamed;
    unnamed.textures = {{4, ""}};
    MaterialFields wrongList;
    wrongList.animatedUniforms = [](NqfBytes& b) {
        b.u32(1).sref("model::Property<float>").sref("x").f32(1);
    };
    MaterialFields shadows;
    shadows.shadows = 2;
    MaterialFields bias;
    bias.depthBias = 3;
    const Case cases[] = {
        {{},
         kCount,
         9,
         "error at byte {} in root.materials[0]: expected a material entry count of 10 to 12, found 9"},
        {{},
         kBlendingKey,
         1,
         "error at byte {} in root.materials[0]: expected the material key \"BLENDING\", found "
         "\"model::Property<unsigned int>\""},
        {{},
         kFormatSize,
         26,
         "error at byte {} in root.materials[0].VERTEX_FORMAT: expected a vertex format of 27 entries, found "
         "26"},
        {{},
         kChannelCount,
         12,
         "error at byte {} in root.materials[0].TEXTURE_COORDINATES_CHANNELS: expected 13 texture coordinate "
         "channels, found 12"},
        {bias, kDepthBias, -1,
         "error at byte {} in root.materials[0].DEPTH_BIAS: expected a depth bias of 0 or 1, found 3"},
        {shadows, kShadows, -1,
         "error at byte {} in root.materials[0].SHADOWS: expected shadow flags 0, 1, 4 or 5, found 2"},
        {both, kSecondSlot, -1,
         "error at byte {} in root.materials[0].TEXTURES[1]: expected no texture in slot 13 when slot 2 has "
         "one (slot 13 clears slot 2), found both"},
        {down, kSecondSlot, -1,
         "error at byte {} in root.materials[0].TEXTURES[1]: expected a texture slot from 5 to 18 (slots "
         "ascend), found 3"},
        {unnamed, kFirstName, -1,
         "error at byte {} in root.materials[0].TEXTURES[0]: expected a texture name (slots without one are "
         "left out), found an empty name"},
        {wrongList, kAnimatedClass, -1,
         "error at byte {} in root.materials[0].ANIMATED_UNIFORMS[0]: expected an animated property class, "
         "found \"model::Property<float>\""},
    };
    for (const Case& c : cases) {
        NqfBytes b;
        root(b, 0, {c.fields});
        b.u32(0).u32(0);
        if (c.patch >= 0) {
            b.body[m + c.at] = static_cast<std::uint8_t>(c.patch);
        }
        EXPECT_EQ(faultOf(b), fmt::format(fmt::runtime(c.message), b.at(m + c.at)));
    }
    // A decal of 0 is left out rather than written. It is the material's last byte, before the root's
    // reserved word and handle count, the tree node count and the group count.
    MaterialFields decal;
    decal.decal = 1;
    NqfBytes d;
    root(d, 0, {decal});
    d.u32(0).u32(0);
    const std::size_t decalAt = d.size() - 17;
    d.body[decalAt] = 0;
    expectFault(d, decalAt,
                "error at byte {} in root.materials[0].DECAL: expected a non-zero decal (a zero decal is "
                "left out), found 0");
    std::size_t at = 0;
    NqfBytes index = oneRecord("RENDER_NODES", [&](NqfBytes& b) {
        head(b, "model::RenderNode", "r");
        at = b.u32(0).size();
        b.u32(1).u32(0);
        vertices(b, 0, 0);
        indices(b, 0, {});
    });
    expectFault(index, at, "error at byte {} in RENDER_NODES[0]: expected a material index below 1, found 1");
}

TEST(NqfReaderFault, VerticesAndIndices) {
    std::size_t at = 0;
    auto shellWith = [&](std::uint32_t count, std::uint32_t floats, const Writer& rest) {
        return oneRecord("SHELL_NODES", [&, count, floats, rest](NqfBytes& b) {
            head(b, "model::ShellNode", "s");
            b.u32(1).u32(27);
            for (int i = 0; i < 27; ++i) {
                b.u8(0);
            }
            at = b.size();
            b.u32(count).u32(floats);
            rest(b);
        });
    };
    // A block larger than the file is refused before anything is allocated.
    NqfBytes huge = shellWith(0xFFFFFFFF, 0xFFFFFFFF, [](NqfBytes&) {});
    expectFault(huge, at + 8,
                "error at byte {} in SHELL_NODES[0].vertices: expected 4294967295 vertices of 4294967295 "
                "floats each, found only 0 bytes left");
    NqfBytes none = shellWith(0, 3, [](NqfBytes& b) { indices(b, 0, {}); });
    expectFault(
        none, at + 4,
        "error at byte {} in SHELL_NODES[0].vertices: expected 0 floats per vertex for no vertices, found 0");
    // Indices: each below the vertex count, stored in the narrowest width.
    NqfBytes past = shellWith(3, 1, [&](NqfBytes& b) {
        b.f32s({0, 1, 2});
        indices(b, 0, {0, 3});
        at = b.size() - 1;
    });
    expectFault(
        past, at,
        "error at byte {} in SHELL_NODES[0].indices[1]: expected an index below the vertex count 3, found 3");
    NqfBytes wide = shellWith(300, 1, [&](NqfBytes& b) {
        for (int i = 0; i < 300; ++i) {
            b.f32(0);
        }
        at = b.size();
        indices(b, 1, {0, 255});
    });
    expectFault(wide, at,
                "error at byte {} in SHELL_NODES[0].indices: expected index width tag 0 (the narrowest for "
                "the largest index 255), found 1");
    NqfBytes tag = shellWith(1, 1, [&](NqfBytes& b) {
        b.f32(0);
        at = b.size();
        indices(b, 3, {});
    });
    expectFault(
        tag, at,
        "error at byte {} in SHELL_NODES[0].indices: expected an index width tag of 0, 1 or 2, found 3");
    NqfBytes many = shellWith(1, 1, [&](NqfBytes& b) {
        b.f32(0);
        b.u8(2).u32(1000).u32(5).u32(0);
        at = b.size() - 4;
    });
    expectFault(many, at,
                "error at byte {} in SHELL_NODES[0].indices: expected 1000 indices of 4 bytes, found only 4 "
                "bytes left");
}

TEST(NqfReaderFault, CountsBeyondTheFileAllocateNothing) {
    std::size_t at = 0;
    NqfBytes props = treeFile({[&](NqfBytes& b) {
                                  b.sref("model::Node").text("n").u32(0);
                                  at = b.size();
                                  b.u32(0xFFFFFFFF);
                              }},
                              {0xFFFFFFFF}, {});
    expectFault(props, at,
                "error at byte {} in tree[0].properties: expected a property count whose entries fit in the "
                "8 bytes left (at least 12 bytes each), found 4294967295");
    NqfBytes name = treeFile({[&](NqfBytes& b) {
                                 b.sref("model::Node");
                                 at = b.size();
                                 b.u32(0x7FFFFFFF).u32(0);
                             }},
                             {0xFFFFFFFF}, {});
    expectFault(name, at,
                "error at byte {} in tree[0]: expected a name length whose entries fit in the 12 bytes left "
                "(at least 1 bytes each), found 2147483647");
    NqfBytes nodes;
    root(nodes);
    at = nodes.size();
    nodes.u32(0xFFFFFFFF);
    expectFault(nodes, at,
                "error at byte {} in tree: expected a tree node count whose entries fit in the 0 bytes left "
                "(at least 20 bytes each), found 4294967295");
}

TEST(NqfReaderFault, NodeRecords) {
    std::size_t at = 0;
    NqfBytes light = oneRecord("LIGHT_NODES", [&](NqfBytes& b) {
        head(b, "model::LightNode", "l", 3);
        b.u32(0).u8(0);
        at = b.size();
        b.u32(7);
        lightProperties(b, 7);
        b.u8(0);
    });
    expectFault(
        light, at,
        "error at byte {} in LIGHT_NODES[0]: expected 10 light properties at class version 3, found 7");
    NqfBytes texture = oneRecord("LIGHT_NODES", [&](NqfBytes& b) {
        head(b, "model::LightNode", "l");
        b.u32(0).u8(0).u32(7);
        lightProperties(b, 7);
        at = b.size();
        b.u8(2);
    });
    expectFault(texture, at,
                "error at byte {} in LIGHT_NODES[0]: expected a texture flag of 0 or 1, found 2");
    NqfBytes handle =
        treeFile({[&](NqfBytes& b) {
                     head(b, "model::ArgRotationNode", "r");
                     b.identity64().f64s({0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 1}).u32(0).u32(1);
                     at = b.size();
                     b.u32(0xFFFFFFFF).u32(0).u32(0);
                 }},
                 {0xFFFFFFFF}, {});
    expectFault(
        handle, at,
        "error at byte {} in tree[0].rotation[0]: expected a valid rotation handle, found 0xFFFFFFFF");
    // Two links carry a reserved word between node and argument; one link does not.
    NqfBytes links = oneRecord("RENDER_NODES", [&](NqfBytes& b) {
        renderHead(b, "model::RenderNode", "r");
        b.u32(2).u32(0);
        at = b.size();
        b.u32(5).u32(0).u32(1).u32(0).u32(0);
        vertices(b, 0, 0);
        indices(b, 0, {});
    });
    expectFault(links, at, "error at byte {} in RENDER_NODES[0].links[0]: expected reserved word 0, found 5");
    NqfBytes box = oneRecord("RENDER_NODES", [&](NqfBytes& b) {
        renderHead(b, "model::SkinNode", "s", 1);
        b.u32(0).u32(0).f32s({0, 0, 0});
        at = b.size();
        b.f32s({1, -1, 1});
        vertices(b, 0, 0);
        indices(b, 0, {});
    });
    expectFault(box, at,
                "error at byte {} in RENDER_NODES[0]: expected a valid box (each maximum at least its "
                "minimum), found minimum 0 and maximum -1 on axis 1");
    auto animatedOmni = [&](std::uint32_t argument, std::uint32_t stride, std::uint32_t values,
                            std::size_t field) {
        return oneRecord("RENDER_NODES", [=, &at](NqfBytes& b) {
            renderHead(b, "model::AnimatedFakeOmniLightsNode", "a");
            b.u32(1).u32(0).u32(0).u32(1);
            fakeLight(b, false);
            at = b.size() + 4 * field;
            b.u32(argument).u32(stride).u32(values);
            for (std::uint32_t i = 0; i < values; ++i) {
                b.f32(0);
            }
        });
    };
    NqfBytes arg = animatedOmni(0xFFFFFFFF, 128, 128, 0);
    expectFault(arg, at,
                "error at byte {} in RENDER_NODES[0].animation: expected a valid argument, found 0xFFFFFFFF");
    NqfBytes stride = animatedOmni(0, 127, 127, 1);
    expectFault(stride, at,
                "error at byte {} in RENDER_NODES[0].animation: expected 128 values per light, found 127");
    NqfBytes values = animatedOmni(0, 128, 129, 2);
    expectFault(values, at,
                "error at byte {} in RENDER_NODES[0].animation: expected 128 values, 128 for each of 1 "
                "lights, found 129");
    // Version 2 of a spot node adds one direction per light.
    NqfBytes spot = oneRecord("RENDER_NODES", [&](NqfBytes& b) {
        renderHead(b, "model::FakeSpotLightsNode", "s", 2);
        b.u32(0).u32(2);
        fakeLight(b, true);
        fakeLight(b, true);
        at = b.size();
        b.f32s({0, 0, 1});
    });
    expectFault(spot, at,
                "error at byte {} in RENDER_NODES[0].directions: expected 2 directions, one per light, found "
                "only 12 bytes left");
}

TEST(NqfReaderFault, RootValues) {
    // Every argument in use needs a handle: the count is at least the highest argument plus one.
    NqfBytes low =
        treeFile({[](NqfBytes& b) {
                     head(b, "model::Node", "n", 0, 1, [](NqfBytes& p) { animatedFloat(p, "a", 5, {}); });
                 }},
                 {0xFFFFFFFF}, {}, 5);
    // Reserved word, root head, boxes, material count, the 157-byte material, reserved word.
    const std::size_t handles = 8 + 28 + 144 + 4 + 157 + 4;
    // Handle count, tree node count, the node's class, name, reserved word and property count,
    // the property's class and name.
    const std::size_t argument = handles + 4 + 4 + 4 + 5 + 4 + 4 + 4 + 4;
    EXPECT_EQ(faultOf(low), fmt::format("error at byte {} in root: expected a handle count of at least 6 "
                                        "(argument 5 is in use at byte {}), found 5",
                                        low.at(handles), low.at(argument)));
    NqfBytes enough =
        treeFile({[](NqfBytes& b) {
                     head(b, "model::Node", "n", 0, 1, [](NqfBytes& p) { animatedFloat(p, "a", 5, {}); });
                 }},
                 {0xFFFFFFFF}, {}, 6);
    EXPECT_EQ(faultOf(enough), "no fault");
    // Render links, skins and animated fake lights carry arguments too.
    std::size_t at = 0;
    NqfBytes link = groupFile({{"RENDER_NODES", {[&](NqfBytes& b) {
                                    renderHead(b, "model::RenderNode", "r");
                                    b.u32(1).u32(0);
                                    at = b.size();
                                    b.u32(9);
                                    vertices(b, 0, 0);
                                    indices(b, 0, {});
                                }}}},
                              9);
    EXPECT_EQ(faultOf(link), fmt::format("error at byte {} in root: expected a handle count of at least 10 "
                                         "(argument 9 is in use at byte {}), found 9",
                                         link.at(handles), link.at(at)));

    NqfBytes box = groupFile({});
    const std::size_t corner = 8 + 28;
    const std::uint64_t tenth = std::bit_cast<std::uint64_t>(0.1);
    for (int i = 0; i < 8; ++i) {
        box.body[corner + i] = static_cast<std::uint8_t>(tenth >> (8 * i));
    }
    expectFault(
        box, corner,
        "error at byte {} in root: expected box corners of float values widened to doubles, found 0.1");
}

}  // namespace
