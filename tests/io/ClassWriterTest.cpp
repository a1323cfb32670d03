#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <fstream>

#include "core/ExtException.h"
#include "core/Vfs.h"
#include "io/FileBytes.h"
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

namespace {

using namespace model;
using testio::Bytes;
using testio::FileCursor;

std::vector<unsigned char> saveToBytes(RootNode& root) {
    std::vector<unsigned char> out;
    createClassWriter(10)->save(root, out);
    return out;
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
    std::vector<unsigned char> file = saveToBytes(*root);

    std::string table = std::string("model::RootNode\0", 16) +
                        std::string("model::Property<unsigned int>\0", 30) +
                        std::string("__VERSION__\0", 12) + std::string("model::Node\0", 12);
    Bytes expected;
    expected.raw("NQF").u16(10).u32(static_cast<std::uint32_t>(table.size())).raw(table).u64(0);
    // Root record: class, inline name, reserved, properties with the version 3 added.
    expected.u32(0).name("scene").u32(0).u32(1).u32(1).u32(2).u32(3);
    const double emptyMin = std::bit_cast<float>(0x7F7FFFFFu);
    const double emptyMax = std::bit_cast<float>(0xFF7FFFFFu);
    for (int box = 0; box < 3; ++box) {
        for (int i = 0; i < 3; ++i) {
            expected.f64(emptyMin);
        }
        for (int i = 0; i < 3; ++i) {
            expected.f64(emptyMax);
        }
    }
    expected.u32(0).u32(0).u32(0);  // materials, reserved, handles
    expected.u32(1);                // one tree node
    expected.u32(3).name("top").u32(0).u32(0);
    expected.u32(0xFFFFFFFFu);  // parent table
    expected.u32(0);            // no groups
    EXPECT_EQ(file, expected.data);
    // The table was inserted at 5: bytes 13 to 16 belong to it, the reserved word follows it.
    EXPECT_EQ(std::string(file.begin() + 9, file.begin() + 24), "model::RootNode");
}

TEST(ClassWriter10, SameTreeSavesToTheSameBytes) {
    Ptr<RootNode> root = makeRoot();
    MaterialPtr m(new PropertiesSet());
    addRender(*root, "mesh", {root->rootNode()}, m);
    EXPECT_EQ(saveToBytes(*root), saveToBytes(*root));
}

TEST(ClassWriter10, TreeInPreOrderWithParentTable) {
    Ptr<RootNode> root = makeRoot("a");
    Ptr<Node> b = createNode("b");
    Ptr<Node> c = createNode("c");
    Ptr<Node> d = createNode("d");
    root->rootNode()->insert(nullptr, b);
    b->insert(nullptr, c);
    root->rootNode()->insert(nullptr, d);
    NodeIndexMap indices = calcNumTransformNodes(root->rootNode());
    EXPECT_EQ(indices.at(root->rootNode().get()), 0u);
    EXPECT_EQ(indices.at(b.get()), 1u);
    EXPECT_EQ(indices.at(c.get()), 2u);
    EXPECT_EQ(indices.at(d.get()), 3u);

    FileCursor f(saveToBytes(*root));
    f.str();
    f.name();
    f.skip(4);
    std::uint32_t props = f.u32();
    f.skip(props * 12 + 144 + 12);
    ASSERT_EQ(f.u32(), 4u);
    for (const char* expected : {"a", "b", "c", "d"}) {
        EXPECT_EQ(f.str(), "model::Node");
        EXPECT_EQ(f.name(), expected);
        f.skip(8);
    }
    EXPECT_EQ(f.u32(), 0xFFFFFFFFu);
    EXPECT_EQ(f.u32(), 0u);
    EXPECT_EQ(f.u32(), 1u);
    EXPECT_EQ(f.u32(), 0u);
    EXPECT_EQ(f.u32(), 0u);
    EXPECT_TRUE(f.atEnd());
}

// Skips the root record and the tree of a model whose tree is one plain node and whose root
// properties are only the version.
void skipToGroups(FileCursor& f, std::uint32_t materials) {
    f.str();
    f.name();
    f.skip(4 + 4 + 12 + 144);
    ASSERT_EQ(f.u32(), materials);
    ASSERT_EQ(materials, 0u) << "helper skips no materials";
    f.skip(8);
    ASSERT_EQ(f.u32(), 1u);
    f.str();
    f.name();
    f.skip(8 + 4);
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

    FileCursor f(saveToBytes(*root));
    skipToGroups(f, 0);
    EXPECT_EQ(f.u32(), 3u);
    EXPECT_EQ(f.str(), "CONNECTORS");
    EXPECT_EQ(f.u32(), 1u);
    EXPECT_EQ(f.str(), "model::Connector");
    EXPECT_EQ(f.name(), "hook");
    f.skip(4);
    EXPECT_EQ(f.u32(), 0u) << "no properties";
    EXPECT_EQ(f.u32(), 0u) << "control node index";
    EXPECT_EQ(f.u32(), 0u) << "reserved";
    EXPECT_EQ(f.str(), "SHELL_NODES");
    EXPECT_EQ(f.u32(), 1u);
    EXPECT_EQ(f.str(), "model::ShellNode");
    f.name();
    f.skip(8);
    EXPECT_EQ(f.u32(), 0u);
    EXPECT_EQ(f.u32(), 27u) << "format block";
    f.skip(27 + 8);  // format, empty vertices
    EXPECT_EQ(f.u8(), 0) << "index width";
    f.skip(8);
    EXPECT_EQ(f.str(), "LIGHT_NODES");
}

TEST(ClassWriter10, OneLinkAndTwoLinkRenderRecordsDiffer) {
    Ptr<RootNode> root = makeRoot();
    Ptr<Node> second = createNode("second");
    root->rootNode()->insert(nullptr, second);
    MaterialPtr m(new PropertiesSet());
    addRender(*root, "one", {second}, m);
    auto one = saveToBytes(*root);

    Ptr<RootNode> root2 = makeRoot();
    Ptr<Node> second2 = createNode("second");
    root2->rootNode()->insert(nullptr, second2);
    addRender(*root2, "one", {second2, root2->rootNode()}, MaterialPtr(new PropertiesSet()));
    auto two = saveToBytes(*root2);
    // The second link adds its own 12 bytes and the first link 4 more.
    EXPECT_EQ(two.size(), one.size() + 16);

    // Links sit right after "count" in the record; check both forms.
    auto linkBytes = [](const std::vector<unsigned char>& file, std::size_t fromEnd, std::size_t n) {
        return std::vector<unsigned char>(file.end() - static_cast<std::ptrdiff_t>(fromEnd),
                                          file.end() - static_cast<std::ptrdiff_t>(fromEnd - n));
    };
    // Tail: links, empty vertices (8), indices (1 + 4 + 4).
    EXPECT_EQ(linkBytes(one, 4 + 8 + 8 + 9, 12), (Bytes().u32(1).u32(1).u32(7).data));
    EXPECT_EQ(linkBytes(two, 4 + 24 + 8 + 9, 28),
              (Bytes().u32(2).u32(1).u32(0).u32(7).u32(0).u32(0).u32(7).data));
}

TEST(ClassWriter10, LightRecordsAtVersionZeroAndThree) {
    for (std::uint32_t version : {0u, 3u}) {
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
        FileCursor f(saveToBytes(*root));
        skipToGroups(f, 0);
        ASSERT_EQ(f.u32(), 1u);
        EXPECT_EQ(f.str(), "LIGHT_NODES");
        EXPECT_EQ(f.u32(), 1u);
        EXPECT_EQ(f.str(), "model::LightNode");
        f.name();
        f.skip(4);
        std::uint32_t props = f.u32();
        EXPECT_EQ(props, version == 3 ? 1u : 0u) << "the version travels as __VERSION__";
        if (props) {
            EXPECT_EQ(f.str(), "model::Property<unsigned int>");
            EXPECT_EQ(f.str(), "__VERSION__");
            EXPECT_EQ(f.u32(), 3u);
        }
        EXPECT_EQ(f.u32(), 0u) << "control node";
        EXPECT_EQ(f.u8(), 0) << "light flag";
        std::uint32_t count = f.u32();
        EXPECT_EQ(count, version == 3 ? 10u : 7u);
        EXPECT_EQ(f.str(), "model::Property<osg::Vec3f>");
        EXPECT_EQ(f.str(), "Color");
        f.skip(12);
        for (std::uint32_t i = 1; i < count; ++i) {
            EXPECT_EQ(f.str(), "model::Property<float>");
            std::string name = f.str();
            float value = f.f32();
            if (name == "DensityFactor") {
                EXPECT_EQ(value, 0.5f);
            }
        }
        if (version == 3) {
            EXPECT_EQ(f.u8(), 2) << "light kind";
        }
        EXPECT_EQ(f.u8(), 0) << "no texture";
        EXPECT_TRUE(f.atEnd());
    }
}

TEST(ClassWriter10, VersionPropertyIsAddedToACopyOnly) {
    Ptr<RootNode> root = makeRoot();
    root->properties.push_back(createUIntProperty("__VERSION__", 1));
    root->properties.push_back(createFloatProperty("after", 2.0f));
    FileCursor f(saveToBytes(*root));
    f.str();
    f.name();
    f.skip(4);
    ASSERT_EQ(f.u32(), 2u);
    EXPECT_EQ(f.str(), "model::Property<unsigned int>");
    EXPECT_EQ(f.str(), "__VERSION__");
    EXPECT_EQ(f.u32(), 3u) << "replaced in place by the class version";
    EXPECT_EQ(f.str(), "model::Property<float>");
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

    FileCursor f(saveToBytes(*root));
    EXPECT_EQ(f.str(), "model::RootNode");
    EXPECT_EQ(f.name(), root->name);
    EXPECT_EQ(f.u32(), 0u);
    ASSERT_EQ(f.u32(), 1u);
    f.skip(12 + 144 + 12);
    ASSERT_EQ(f.u32(), 3u);
    const std::pair<std::string, float> nodes[] = {{std::string(112, 'a'), 2.5f},
                                                   {std::string(113, 'b'), 1.5f}};
    for (const auto& [name, value] : nodes) {
        EXPECT_EQ(f.str(), "model::Node");
        EXPECT_EQ(f.name(), name);
        EXPECT_EQ(f.u32(), 0u);
        ASSERT_EQ(f.u32(), 1u);
        EXPECT_EQ(f.str(), "model::Property<float>");
        f.str();
        EXPECT_EQ(f.f32(), value);
    }
    EXPECT_EQ(f.str(), "model::Node");
    EXPECT_EQ(f.name(), "");
    EXPECT_EQ(f.u32(), 0u);
    EXPECT_EQ(f.u32(), 0u);
    EXPECT_EQ(f.u32(), 0xFFFFFFFFu) << "the parent table follows the last record";
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
