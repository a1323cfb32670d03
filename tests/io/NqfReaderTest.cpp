#include <gtest/gtest.h>

#include "NqfSample.h"
#include "model/io/NqfReader.h"

using namespace model::io;
using namespace nqftest;

namespace {

NqfDocument read(const NqfBytes& b) {
    const std::vector<std::uint8_t> bytes = b.file();
    return readNqf(bytes);
}

template <class T>
const T& body(const NqfNode& n) {
    const T* p = std::get_if<T>(&n.body);
    EXPECT_NE(p, nullptr) << n.head.className;
    static const T empty{};
    return p ? *p : empty;
}

class SampleFile : public ::testing::Test {
protected:
    static void SetUpTestSuite() { doc = new NqfDocument(read(sampleFile())); }
    static void TearDownTestSuite() { delete doc; }
    static NqfDocument* doc;
};
NqfDocument* SampleFile::doc = nullptr;

TEST_F(SampleFile, HeaderStringsAndRoot) {
    EXPECT_EQ(doc->version, 10);
    ASSERT_FALSE(doc->strings.empty());
    EXPECT_EQ(doc->strings[0], "model::RootNode");
    const NqfRoot& r = doc->root;
    EXPECT_EQ(r.head.className, "model::RootNode");
    EXPECT_EQ(r.head.version, 3u);
    EXPECT_EQ(r.boundingBox.min, (Vec3f{-1, -2, -3}));
    EXPECT_EQ(r.userBox.max, (Vec3f{0.5f, 0.5f, 0.5f}));
    EXPECT_EQ(r.lightBox.min[0], 3.4028234663852886e38f);
    EXPECT_EQ(r.numHandles, 8u);
}

TEST_F(SampleFile, Materials) {
    ASSERT_EQ(doc->root.materials.size(), 2u);
    const NqfMaterial& a = doc->root.materials[0];
    EXPECT_EQ(a.name, "body");
    EXPECT_EQ(a.materialName, "default");
    EXPECT_EQ(a.blending, 1);
    EXPECT_EQ(a.vertexFormat[1], 3);
    EXPECT_EQ(a.textureChannels[1], 0xFFFFFFFFu);
    ASSERT_EQ(a.textures.size(), 2u);
    EXPECT_EQ(a.textures[1].slot, 13u);
    EXPECT_EQ(a.textures[1].name, "damage.dds");
    EXPECT_EQ(a.textures[0].filter, 10u);
    EXPECT_EQ(a.textures[0].matrix[15], 1.0f);
    ASSERT_EQ(a.uniforms.size(), 2u);
    EXPECT_EQ(a.uniforms[0].floats, std::vector<float>{0.75f});
    EXPECT_EQ(a.uniforms[1].text, "glass");
    ASSERT_EQ(a.animatedUniforms.size(), 2u);
    EXPECT_EQ(a.animatedUniforms[0].argument, 9u);
    ASSERT_EQ(a.animatedUniforms[0].keys.size(), 2u);
    EXPECT_EQ(a.animatedUniforms[0].keys[1].time, 1.0);
    EXPECT_EQ(a.animatedUniforms[1].className, "model::ArgumentProperty");
    EXPECT_EQ(a.animatedUniforms[1].argument, 4u);
    EXPECT_FALSE(a.hasBillboard);
    EXPECT_EQ(a.decal, 0);

    const NqfMaterial& b = doc->root.materials[1];
    EXPECT_TRUE(b.hasBillboard);
    EXPECT_EQ(b.billboardMode, 6);
    EXPECT_EQ(b.decal, 2);
    EXPECT_EQ(b.shadows, 5);
    EXPECT_EQ(b.depthBias, 1u);
}

TEST_F(SampleFile, TreeNodes) {
    ASSERT_EQ(doc->tree.size(), 12u);
    EXPECT_EQ(doc->parents, (std::vector<std::uint32_t>{0xFFFFFFFF, 0, 1, 1, 0, 4, 5, 5, 0, 8, 9, 0}));
    EXPECT_TRUE(std::holds_alternative<NqfPlainBody>(doc->tree[0].body));
    EXPECT_EQ(body<NqfTransformBody>(doc->tree[1]).matrix[5], 1.0);
    EXPECT_TRUE(body<NqfTransformBody>(doc->tree[2]).isBone);
    const auto& bb = body<NqfBillboardBody>(doc->tree[3]);
    EXPECT_EQ(bb.billboardType, 2);
    EXPECT_EQ(bb.offset, (Vec3d{0, 1, 0}));
    EXPECT_EQ(doc->tree[3].head.version, 1u);
    const auto& lod = body<NqfLodBody>(doc->tree[4]);
    ASSERT_EQ(lod.ranges.size(), 2u);
    EXPECT_EQ(lod.ranges[1].second, 1e300);
    const auto& vis = body<NqfVisibilityBody>(doc->tree[5]);
    ASSERT_EQ(vis.entries.size(), 1u);
    EXPECT_EQ(vis.entries[0].argument, 2u);

    // One record shape behind the four names; the name follows the channels.
    const auto& pos = body<NqfAnimationBody>(doc->tree[6]);
    ASSERT_EQ(pos.position.size(), 1u);
    EXPECT_EQ(pos.position[0].keys[0].value, (Vec3d{1, 2, 3}));
    EXPECT_EQ(body<NqfAnimationBody>(doc->tree[7]).rotation[0].keys[0].value, (Vec4d{0, 0, 0, 1}));
    EXPECT_TRUE(body<NqfAnimationBody>(doc->tree[8]).scale.empty());
    const auto& mixed = body<NqfAnimationBody>(doc->tree[9]);
    ASSERT_EQ(mixed.scale.size(), 1u);
    EXPECT_EQ(mixed.scale[0].argument, 5u);
    ASSERT_EQ(mixed.scale[0].secondKeys.size(), 2u);
    EXPECT_EQ(mixed.scale[0].secondKeys[1].value, (Vec3d{2, 2, 2}));
    const auto& abone = body<NqfAnimationBody>(doc->tree[10]);
    EXPECT_TRUE(abone.isBone);
    EXPECT_EQ(abone.boneMatrix[0], 1.0);
    EXPECT_EQ(doc->tree[11].head.className, "model::TmpNumberRoot");
    EXPECT_EQ(doc->tree[11].head.properties[0].argument, 7u);
}

TEST_F(SampleFile, ShellAndLightGroups) {
    ASSERT_EQ(doc->groups.size(), 4u);
    EXPECT_EQ(doc->groups[0].name, "CONNECTORS");
    EXPECT_EQ(body<NqfConnectorBody>(doc->groups[0].nodes[0]).controlNode, 1u);

    const auto& shells = doc->groups[1].nodes;
    ASSERT_EQ(shells.size(), 4u);
    const auto& shell = body<NqfShellBody>(shells[0]);
    EXPECT_EQ(shell.controlNode, 2u);
    EXPECT_EQ(shell.format[0], 4);
    EXPECT_EQ(shell.vertices.floatsPerVertex, 7u);
    EXPECT_EQ(shell.vertices.data.size(), 21u);
    EXPECT_EQ(shell.vertices.data[20], 10.0f);
    // The skin box is there only from class version 1 on.
    EXPECT_FALSE(body<NqfSkinBody>(shells[1]).hasBox);
    EXPECT_EQ(body<NqfSkinBody>(shells[1]).argument, 0xFFFFFFFFu);
    const auto& boxed = body<NqfSkinBody>(shells[2]);
    EXPECT_TRUE(boxed.hasBox);
    EXPECT_EQ(boxed.box.max, (Vec3f{1, 1, 1}));
    EXPECT_EQ(boxed.indices.values, (std::vector<std::uint32_t>{1, 0}));
    EXPECT_EQ(body<NqfSegmentsBody>(shells[3]).segments[0].b, (Vec3f{1, 1, 1}));

    const auto& omni = body<NqfLightBody>(doc->groups[2].nodes[0]);
    EXPECT_EQ(omni.properties.size(), 7u);
    EXPECT_FALSE(omni.hasLightKind);
    EXPECT_FALSE(omni.hasTexture);
    const auto& spot = body<NqfLightBody>(doc->groups[2].nodes[1]);
    EXPECT_EQ(spot.properties.size(), 10u);
    EXPECT_EQ(spot.lightFlag, 1);
    EXPECT_TRUE(spot.hasLightKind);
    EXPECT_EQ(spot.lightKind, 2);
    ASSERT_TRUE(spot.hasTexture);
    EXPECT_EQ(spot.texture.name, "projector.dds");
    EXPECT_EQ(spot.texture.texCoordChannel, 1u);
}

TEST_F(SampleFile, RenderGroup) {
    const auto& nodes = doc->groups[3].nodes;
    ASSERT_EQ(nodes.size(), 10u);
    // One link: (node, argument); two links: (node, 0, argument) each.
    const auto& one = body<NqfRenderBody>(nodes[0]);
    ASSERT_EQ(one.links.size(), 1u);
    EXPECT_EQ(one.links[0].node, 1u);
    EXPECT_EQ(one.links[0].argument, 0xFFFFFFFFu);
    EXPECT_FALSE(one.hasRenderOption);
    const auto& two = body<NqfRenderBody>(nodes[1]);
    EXPECT_EQ(two.material, 1u);
    ASSERT_EQ(two.links.size(), 2u);
    EXPECT_EQ(two.links[0].argument, 4u);
    EXPECT_EQ(two.links[1].node, 2u);
    EXPECT_EQ(two.indices.width, 1);
    EXPECT_EQ(two.indices.primitive, 6u);
    EXPECT_EQ(two.indices.values, (std::vector<std::uint32_t>{0, 299, 256}));
    EXPECT_TRUE(two.hasRenderOption);
    EXPECT_EQ(two.renderOption, 7u);
    const auto& digits = body<NqfRenderBody>(nodes[2]);
    ASSERT_EQ(digits.digits.size(), 1u);
    ASSERT_EQ(digits.digits[0].size(), 2u);
    EXPECT_EQ(digits.digits[0][1][15], 31);

    const auto& skin = body<NqfSkinBody>(nodes[3]);
    EXPECT_EQ(skin.bones, (std::vector<std::uint32_t>{2, 10}));
    EXPECT_FALSE(skin.hasBox);
    EXPECT_TRUE(body<NqfSkinBody>(nodes[4]).hasBox);

    const auto& omnis = body<NqfFakeLightsBody>(nodes[5]);
    ASSERT_EQ(omnis.lights.size(), 2u);
    EXPECT_EQ(omnis.lights[1].position, (Vec3d{1, 2, 3}));
    EXPECT_EQ(omnis.lights[1].size, 0.5f);
    EXPECT_FALSE(omnis.animated);
    const auto& spots = body<NqfFakeLightsBody>(nodes[6]);
    EXPECT_EQ(spots.linkDirections, (std::vector<Vec3f>{{0, 0, 1}}));
    EXPECT_EQ(spots.lights[0].spotFlag, 1);
    EXPECT_EQ(spots.directions, (std::vector<Vec3f>{{0, -1, 0}}));
    EXPECT_EQ(body<NqfFakeSpots3Body>(nodes[7]).lights.count, 2u);
    const auto& aomni = body<NqfFakeLightsBody>(nodes[8]);
    EXPECT_TRUE(aomni.animated);
    EXPECT_EQ(aomni.argument, 6u);
    ASSERT_EQ(aomni.animationData.size(), 128u);
    EXPECT_EQ(aomni.animationData[127], 127.0f);
    const auto& aspot = body<NqfFakeLightsBody>(nodes[9]);
    EXPECT_TRUE(aspot.directions.empty());  // version 0: no directions
    EXPECT_EQ(aspot.animationData[1], -1.0f);
}

TEST(NqfReader, SmallestFileAndFourByteIndices) {
    // A root with no tree and no groups.
    NqfBytes empty;
    root(empty, 0, {});
    empty.u32(0).u32(0);
    const NqfDocument d = read(empty);
    EXPECT_TRUE(d.tree.empty());
    EXPECT_TRUE(d.groups.empty());
    EXPECT_TRUE(d.root.materials.empty());

    NqfBytes wide = groupFile({{"RENDER_NODES", {[](NqfBytes& b) {
                                    head(b, "model::RenderNode", "big");
                                    b.u32(0).u32(0).u32(0);
                                    vertices(b, 70000, 1);
                                    indices(b, 2, {69999, 65536, 0});
                                }}}});
    const NqfDocument w = read(wide);
    const auto& r = std::get<NqfRenderBody>(w.groups[0].nodes[0].body);
    EXPECT_EQ(r.indices.width, 2);
    EXPECT_EQ(r.indices.values[0], 69999u);
}

}  // namespace
