#include <gtest/gtest.h>

#include "model/utils/PrepareVertices.h"
#include "utils/MergeTestSupport.h"

namespace {

using namespace model;
using namespace model::utils;
using namespace mergetest;

constexpr std::uint32_t kNone = 0xFFFFFFFFu;

class PrepareVerticesTest : public ::testing::Test {
protected:
    Scene s = makeScene();
    MaterialRef material = makeMaterial("m");

    // A triangle with texture-coordinate channels whose u values are given per channel.
    Ptr<RenderNode> add(const std::vector<std::vector<float>>& channels, const MaterialPtr& m) {
        Ptr<RenderNode> node = makeTriangle(s.root->rootNode(), m);
        for (std::size_t c = 0; c < channels.size(); ++c) {
            std::vector<float> uv;
            for (float u : channels[c]) {
                uv.insert(uv.end(), {u, 0.5f});
            }
            node->vertices.setAttribute(texCoordSemantic(static_cast<int>(c)), 2, uv);
        }
        s.root->addRenderNode(node);
        return node;
    }
    void useChannels(int count) {
        for (int c = 0; c < count; ++c) {
            material->vertexFormat[texCoordSemantic(c)] = 2;
        }
    }
    void expectFailure(const std::string& message) {
        EXPECT_EQ(failureOf([&] { prepareVertices(*s.root); }), message);
    }
};

TEST_F(PrepareVerticesTest, ATableThatNamesAChannelTheFormatLacksIsBroken) {
    useChannels(1);
    material->textureChannels[0] = 0;
    material->textureChannels[3] = 1;
    add({{0, 1, 0}}, material);
    expectFailure("Broken texture channels");
    material->textureChannels[3] = 16;
    expectFailure("Broken texture channels");
}

TEST_F(PrepareVerticesTest, ANamedChannelWithoutDataIsEmpty) {
    useChannels(2);
    material->textureChannels[0] = 0;
    material->textureChannels[1] = 1;
    Ptr<RenderNode> node = add({{0, 1, 0}}, material);
    expectFailure("Empty texture channel");
    node->vertices.setAttribute(TEXCOORD1, 2, {});
    expectFailure("Empty texture channel");
}

TEST_F(PrepareVerticesTest, AttributesThatDoNotFitTheFormatAreTheWrongSize) {
    Ptr<RenderNode> good = add({}, material);
    good->vertices.setAttribute(COLOR0, 4, std::vector<float>(12, 1.0f));  // not in the format
    Ptr<RenderNode> node = add({}, material);
    node->vertices.attributes.erase(NORMAL0);
    expectFailure("Wrong vertex size.");
    // Nothing changed on the node before the failing one.
    EXPECT_NE(good->vertices.findAttribute(COLOR0), nullptr);

    node->vertices.setAttribute(NORMAL0, 2, std::vector<float>(6, 0.0f));
    expectFailure("Wrong vertex size.");
    node->vertices.setAttribute(NORMAL0, 3, std::vector<float>(6, 0.0f));  // two vertices of three
    expectFailure("Wrong vertex size.");
    node->vertices.setAttribute(NORMAL0, 3, std::vector<float>(9, 0.0f));
    MaterialRef noPosition = makeMaterial("p");
    noPosition->vertexFormat[POSITION0] = 0;
    node->material = noPosition;
    expectFailure("Wrong vertex size.");
}

TEST_F(PrepareVerticesTest, NodesTakeTheFormatAndEmptyNodesAreLeftAlone) {
    material->vertexFormat[POSITION0] = 3;
    Ptr<RenderNode> node = add({{0, 1, 0}}, material);  // TEXCOORD0 is not in the format
    Ptr<RenderNode> empty = add({}, material);
    empty->indices.indices.clear();
    empty->vertices.attributes.erase(NORMAL0);
    EXPECT_EQ(prepareVertices(*s.root), 0u);
    EXPECT_TRUE(node->vertices.matchesFormat(material->vertexFormat));
    EXPECT_EQ(node->vertices.attribute(POSITION0).data, (std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0}));
    EXPECT_EQ(empty->vertices.attribute(POSITION0).size, 4);
}

TEST_F(PrepareVerticesTest, EqualChannelsFoldUnnamedOnesGoAndTheRestAreRenumbered) {
    useChannels(4);
    // Slots 0 and 1 on channels 0 and 1 with equal data in every user; slot 2 on channel 3;
    // channel 2 is named by no slot.
    material->textureChannels[0] = 0;
    material->textureChannels[1] = 1;
    material->textureChannels[2] = 3;
    Ptr<RenderNode> a = add({{0, 1, 0}, {0, 1, 0}, {7, 7, 7}, {0.25f, 0, 1}}, material);
    Ptr<RenderNode> b = add({{1, 1, 0}, {1, 1, 0}, {7, 7, 7}, {0, 0, 0}}, material);
    EXPECT_EQ(prepareVertices(*s.root), 2u);
    EXPECT_EQ(material->textureChannels[0], 0u);
    EXPECT_EQ(material->textureChannels[1], 0u);
    EXPECT_EQ(material->textureChannels[2], 1u);
    EXPECT_EQ(material->textureChannels[3], kNone);
    EXPECT_EQ(material->vertexFormat[TEXCOORD1], 2);
    EXPECT_EQ(material->vertexFormat[TEXCOORD2], 0);
    EXPECT_EQ(material->vertexFormat[TEXCOORD3], 0);
    for (const Ptr<RenderNode>& n : {a, b}) {
        EXPECT_TRUE(n->vertices.matchesFormat(material->vertexFormat));
    }
    EXPECT_EQ(a->vertices.attribute(TEXCOORD1).data[0], 0.25f);

    // Channels that differ in one user stay apart; a second run changes nothing.
    b->vertices.attribute(TEXCOORD0).data[0] = 5;
    EXPECT_EQ(prepareVertices(*s.root), 0u);
}

TEST_F(PrepareVerticesTest, AMaterialThatANodeWithoutMeshAlsoUsesKeepsItsChannels) {
    useChannels(2);
    material->textureChannels[0] = 0;
    material->textureChannels[1] = 1;
    add({{0, 1, 0}, {0, 1, 0}}, material);
    Ptr<FakeOmniLightsNode> lights = createNodeAs<FakeOmniLightsNode>("model::FakeOmniLightsNode");
    lights->material = material;
    s.root->addRenderNode(lights);
    EXPECT_EQ(prepareVertices(*s.root), 0u);
    EXPECT_EQ(material->textureChannels[1], 1u);
}

}  // namespace
