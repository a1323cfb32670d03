#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <fstream>

#include "core/ExtException.h"
#include "core/Vfs.h"
#include "io/NqfBytes.h"
#include "model/AnimatedFakeLights.h"
#include "model/ArgAnimationNode.h"
#include "model/Connector.h"
#include "model/FakeSpotLightsNode.h"
#include "model/LightNode.h"
#include "model/NodeCreators.h"
#include "model/PropertiesSet.h"
#include "model/PropertyCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/ShellNode.h"
#include "model/io/ClassWriter10.h"
#include "model/io/NqfReader.h"

namespace {

using namespace model;
using namespace model::io;

std::vector<unsigned char> saveToBytes(RootNode& root) {
    std::vector<unsigned char> out;
    createClassWriter(10)->save(root, out);
    return out;
}

NqfDocument readBack(RootNode& root) {
    return readNqf(saveToBytes(root));
}

std::string saveError(RootNode& root) {
    try {
        saveToBytes(root);
    } catch (const nq::ExtException& e) {
        return e.what();
    }
    return "(no error)";
}

Ptr<RootNode> makeRoot(const char* treeName = "top") {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    root->name = "scene";
    root->setRootNode(createNode(treeName));
    return root;
}

Ptr<RenderNode> addRender(RootNode& root, const std::string& name, std::vector<Ptr<Node>> links,
                          MaterialPtr material) {
    Ptr<RenderNode> r = createNodeAs<RenderNode>("model::RenderNode");
    r->name = name;
    for (auto& l : links) {
        r->links.push_back(RenderLink{l, 7});
    }
    r->material = std::move(material);
    root.addRenderNode(r);
    return r;
}

// The smallest model, to the byte: root record, one plain tree node, no groups.
TEST(ClassWriter10, MinimalFileToTheByte) {
    Ptr<RootNode> root = makeRoot();
    nqftest::NqfBytes expected;
    expected.u64(0);
    // Root record: class, inline name, reserved, properties with the version 3 added, empty boxes.
    nqftest::head(expected, "model::RootNode", "scene", 3);
    for (int box = 0; box < 3; ++box) {
        for (std::uint32_t bits :
             {0x7F7FFFFFu, 0x7F7FFFFFu, 0x7F7FFFFFu, 0xFF7FFFFFu, 0xFF7FFFFFu, 0xFF7FFFFFu}) {
            expected.f64(std::bit_cast<float>(bits));
        }
    }
    expected.u32(0).u32(0).u32(0);  // materials, reserved, handles
    expected.u32(1);                // one tree node
    nqftest::head(expected, "model::Node", "top");
    expected.u32(0xFFFFFFFFu).u32(0);  // parent table, no groups
    EXPECT_EQ(saveToBytes(*root), expected.file());
}

TEST(ClassWriter10, TreeInPreOrderWithParentTable) {
    Ptr<RootNode> root = makeRoot("a");
    Ptr<Node> b = createNode("b");
    Ptr<Node> c = createNode("c");
    Ptr<Node> d = createNode("d");
    root->rootNode()->insert(nullptr, b);
    b->insert(nullptr, c);
    root->rootNode()->insert(nullptr, d);
    const NodeIndexMap indices = calcNumTransformNodes(root->rootNode());
    EXPECT_EQ(indices, (NodeIndexMap{{root->rootNode().get(), 0}, {b.get(), 1}, {c.get(), 2}, {d.get(), 3}}));

    const NqfDocument doc = readBack(*root);
    ASSERT_EQ(doc.tree.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(doc.tree[i].head, (NqfHead{"model::Node", std::string(1, char('a' + i)), {}, 0}));
    }
    EXPECT_EQ(doc.parents, (std::vector<std::uint32_t>{0xFFFFFFFFu, 0, 1, 0}));
    EXPECT_TRUE(doc.groups.empty());
}

TEST(ClassWriter10, GroupsInFileOrderAndEmptyOnesLeftOut) {
    Ptr<RootNode> root = makeRoot();
    Ptr<Connector> c = createNodeAs<Connector>("model::Connector");
    c->name = "hook";
    c->controlNode = root->rootNode();
    root->addConnector(c);
    Ptr<LightNode> light = createNodeAs<LightNode>("model::LightNode");
    light->controlNode = root->rootNode();
    root->addLightNode(light);
    Ptr<ShellNode> shell = createNodeAs<ShellNode>("model::ShellNode");
    shell->controlNode = root->rootNode();
    root->addShellNode(shell);

    const NqfDocument doc = readBack(*root);
    ASSERT_EQ(doc.groups.size(), 3u);
    EXPECT_EQ(doc.groups[0].name, "CONNECTORS");
    ASSERT_EQ(doc.groups[0].nodes.size(), 1u);
    EXPECT_EQ(doc.groups[0].nodes[0].head, (NqfHead{"model::Connector", "hook", {}, 0}));
    EXPECT_EQ(std::get<NqfConnectorBody>(doc.groups[0].nodes[0].body).controlNode, 0u);
    EXPECT_EQ(doc.groups[1].name, "SHELL_NODES");
    const auto& written = std::get<NqfShellBody>(doc.groups[1].nodes.at(0).body);
    EXPECT_EQ(written.format, (std::array<std::uint8_t, 27>{}));
    EXPECT_EQ(written.vertices, NqfVertices{});
    EXPECT_EQ(written.indices, (NqfIndices{0, 5, {}}));
    EXPECT_EQ(doc.groups[2].name, "LIGHT_NODES");
}

TEST(ClassWriter10, OneLinkAndTwoLinkRenderRecordsDiffer) {
    auto saveWithLinks = [](bool two) {
        Ptr<RootNode> root = makeRoot();
        Ptr<Node> second = createNode("second");
        root->rootNode()->insert(nullptr, second);
        addRender(*root, "one",
                  two ? std::vector<Ptr<Node>>{second, root->rootNode()} : std::vector<Ptr<Node>>{second},
                  MaterialPtr(new PropertiesSet()));
        return saveToBytes(*root);
    };
    const auto one = saveWithLinks(false);
    const auto two = saveWithLinks(true);
    // The second link adds its own 12 bytes and the first link 4 more.
    EXPECT_EQ(two.size(), one.size() + 16);

    // Links sit right after "count" in the record; check both forms.
    auto linkBytes = [](const std::vector<unsigned char>& file, std::size_t fromEnd, std::size_t n) {
        return std::vector<unsigned char>(file.end() - static_cast<std::ptrdiff_t>(fromEnd),
                                          file.end() - static_cast<std::ptrdiff_t>(fromEnd - n));
    };
    // Tail: links, empty vertices (8), indices (1 + 4 + 4).
    EXPECT_EQ(linkBytes(one, 4 + 8 + 8 + 9, 12), (nqftest::NqfBytes().u32(1).u32(1).u32(7).body));
    EXPECT_EQ(linkBytes(two, 4 + 24 + 8 + 9, 28),
              (nqftest::NqfBytes().u32(2).u32(1).u32(0).u32(7).u32(0).u32(0).u32(7).body));
}

TEST(ClassWriter10, LightRecordsAtVersionZeroAndThree) {
    for (std::uint32_t version : {0u, 3u}) {
        SCOPED_TRACE(version);
        Ptr<RootNode> root = makeRoot();
        Ptr<LightNode> light = createNodeAs<LightNode>("model::LightNode");
        light->controlNode = root->rootNode();
        light->color = createVec3fProperty("Color", osg::Vec3f{{1, 0.5f, 0}});
        if (version == 3) {
            light->setDensityFactor(createFloatProperty("DensityFactor", 0.5f));
            light->setLightKind(2);
        }
        ASSERT_EQ(light->version, version);
        root->addLightNode(light);
        const NqfDocument doc = readBack(*root);
        ASSERT_EQ(doc.groups.size(), 1u);
        EXPECT_EQ(doc.groups[0].name, "LIGHT_NODES");
        ASSERT_EQ(doc.groups[0].nodes.size(), 1u);
        const NqfNode& node = doc.groups[0].nodes[0];
        EXPECT_EQ(node.head.className, "model::LightNode");
        // The version travels as "__VERSION__", and only when it is not 0.
        const std::vector<NqfProperty> versionProperty = {
            {"model::Property<unsigned int>", "__VERSION__", {}, 3, "", kNoIndex, {}}};
        EXPECT_EQ(node.head.properties, version == 3 ? versionProperty : std::vector<NqfProperty>{});
        const auto& body = std::get<NqfLightBody>(node.body);
        EXPECT_EQ(body.link, 0u);
        EXPECT_EQ(body.lightFlag, 0);
        ASSERT_EQ(body.properties.size(), version == 3 ? 10u : 7u);
        EXPECT_EQ(body.properties[0].className, "model::Property<osg::Vec3f>");
        EXPECT_EQ(body.properties[0].name, "Color");
        for (std::size_t i = 1; i < body.properties.size(); ++i) {
            EXPECT_EQ(body.properties[i].className, "model::Property<float>");
            if (body.properties[i].name == "DensityFactor") {
                EXPECT_EQ(body.properties[i].floats, std::vector<float>{0.5f});
            }
        }
        EXPECT_EQ(body.hasLightKind, version == 3);
        EXPECT_EQ(body.lightKind, version == 3 ? 2 : 0);
        EXPECT_FALSE(body.hasTexture);
    }
}

TEST(ClassWriter10, VersionPropertyIsAddedToACopyOnly) {
    Ptr<RootNode> root = makeRoot();
    root->properties.push_back(createUIntProperty("__VERSION__", 1));
    root->properties.push_back(createFloatProperty("after", 2.0f));
    const NqfDocument doc = readBack(*root);
    ASSERT_EQ(doc.root.head.properties.size(), 2u);
    // Replaced in place by the class version.
    EXPECT_EQ(doc.root.head.properties[0],
              (NqfProperty{"model::Property<unsigned int>", "__VERSION__", {}, 3, "", kNoIndex, {}}));
    EXPECT_EQ(doc.root.head.properties[1].className, "model::Property<float>");
    EXPECT_EQ(root->properties.size(), 2u);
    std::uint32_t stored = 0;
    ASSERT_TRUE(getProperty(root->properties, "__VERSION__", stored));
    EXPECT_EQ(stored, 1u) << "the node's own list is unchanged";
}

// A short name goes out with the reserved word and the property count in one piece, a long one
// word by word: names on both sides of that limit, on tree nodes and on the root record.
TEST(ClassWriter10, NamesOfAnyLengthStandInlineBeforeTheProperties) {
    Ptr<RootNode> root = makeRoot(std::string(112, 'a').c_str());
    root->name = std::string(300, 'r');
    Ptr<Node> longer = createNode(std::string(113, 'b'));
    longer->properties.push_back(createFloatProperty("p", 1.5f));
    root->rootNode()->insert(nullptr, longer);
    root->rootNode()->insert(nullptr, createNode(""));
    root->rootNode()->properties.push_back(createFloatProperty("q", 2.5f));

    const NqfDocument doc = readBack(*root);
    EXPECT_EQ(doc.root.head.name, root->name);
    EXPECT_EQ(doc.root.head.version, 3u);
    const NqfProperty q{"model::Property<float>", "q", {2.5f}, 0, "", kNoIndex, {}};
    const NqfProperty p{"model::Property<float>", "p", {1.5f}, 0, "", kNoIndex, {}};
    ASSERT_EQ(doc.tree.size(), 3u);
    EXPECT_EQ(doc.tree[0].head, (NqfHead{"model::Node", std::string(112, 'a'), {q}, 0}));
    EXPECT_EQ(doc.tree[1].head, (NqfHead{"model::Node", std::string(113, 'b'), {p}, 0}));
    EXPECT_EQ(doc.tree[2].head, (NqfHead{"model::Node", "", {}, 0}));
}

TEST(ClassWriter10, RecordFailuresCarryTheirTexts) {
    {
        Ptr<RootNode> root = makeRoot();
        auto r = addRender(*root, "lost", {root->rootNode()}, MaterialPtr(new PropertiesSet()));
        r->material = MaterialPtr(new PropertiesSet());
        root->materials.clear();
        // collectMaterials finds the new material, so detach the node from its root instead.
        r->root = nullptr;
        EXPECT_EQ(saveError(*root), "Unknown properties set. Node: lost.");
    }
    {
        Ptr<RootNode> root = makeRoot();
        Ptr<ShellNode> shell = createNodeAs<ShellNode>("model::ShellNode");
        shell->name = "hull";
        root->addShellNode(shell);
        EXPECT_EQ(saveError(*root), "Control node isn't set. BaseShellNode: hull.");
    }
    {
        Ptr<RootNode> root = makeRoot();
        addRender(*root, "away", {createNode("outside")}, MaterialPtr(new PropertiesSet()));
        EXPECT_EQ(saveError(*root), "invalid unordered_map<K, T> key");
    }
    for (int which = 0; which < 3; ++which) {
        Ptr<RootNode> root = makeRoot();
        Ptr<ArgAnimationNode> anim = createNodeAs<ArgAnimationNode>("model::ArgAnimationNode");
        anim->name = "door";
        if (which == 0) {
            anim->positionChannels.push_back(PositionChannel{});
        } else if (which == 1) {
            anim->rotationChannels.push_back(RotationChannel{});
        } else {
            anim->scaleChannels.push_back(ScaleChannel{});
        }
        root->rootNode()->insert(nullptr, anim);
        const char* kind[] = {"position", "rotation", "scale"};
        EXPECT_EQ(saveError(*root), std::string("Node 'door' has invalid ") + kind[which] + " handle.");
    }
}

TEST(ClassWriter10, FakeLightFailuresCarryTheirTexts) {
    auto withSpots = [](auto setup) {
        Ptr<RootNode> root = makeRoot();
        Ptr<AnimatedFakeSpotLightsNode> spots =
            createNodeAs<AnimatedFakeSpotLightsNode>("model::AnimatedFakeSpotLightsNode");
        spots->material = MaterialPtr(new PropertiesSet());
        spots->links.push_back(FakeSpotLink{root->rootNode(), {}});
        spots->lights.resize(2);
        spots->argument = 4;
        spots->animationData.assign(256, 0.0f);
        setup(*spots);
        root->addRenderNode(spots);
        return saveError(*root);
    };
    EXPECT_EQ(withSpots([](AnimatedFakeSpotLightsNode&) {}), "(no error)");
    EXPECT_EQ(
        withSpots([](AnimatedFakeSpotLightsNode& n) { n.argument = 0xFFFFFFFFu; }),
        "Argument of animated fake omni lights must be valid. Node id: model::AnimatedFakeSpotLightsNode.");
    EXPECT_EQ(withSpots([](AnimatedFakeSpotLightsNode& n) { n.animationData.pop_back(); }),
              "Invalid data size. Node id: %s.");
    EXPECT_EQ(withSpots([](AnimatedFakeSpotLightsNode& n) {
                  n.version = 2;
                  n.directions.resize(1);
              }),
              "FakeSpotLightsNode's directions array != the number of lights. Node id: "
              "model::AnimatedFakeSpotLightsNode.");
}

TEST(RootNodeSave, VersionAndFileSystemFailuresLeaveNoFile) {
    Ptr<RootNode> root = makeRoot();
    std::filesystem::path dir = std::filesystem::path(testing::TempDir()) / "nqf_save_test";
    std::filesystem::create_directories(dir);
    std::string target = (dir / "model.nqf").string();
    std::filesystem::remove(target);

    try {
        root->save(target, 11);
        FAIL() << "version 11 has no writer";
    } catch (const nq::ExtException& e) {
        EXPECT_STREQ(e.what(), "Unsupported version 11");
    }
    EXPECT_FALSE(std::filesystem::exists(target));

    nqvfs::unmount("/");
    try {
        root->save(target, 10);
        FAIL() << "an absolute path needs a mount";
    } catch (const nq::ExtException& e) {
        EXPECT_EQ(std::string(e.what()), "Can't write to file " + target);
    }
    EXPECT_FALSE(std::filesystem::exists(target));

    nqvfs::mountNative("/");
    root->save(target, 10);
    nqvfs::unmount("/");
    std::ifstream in(target, std::ios::binary);
    std::vector<unsigned char> onDisk((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_EQ(onDisk, saveToBytes(*root));
}

}  // namespace
