#include <gtest/gtest.h>

#include "model/utils/CanMerge.h"
#include "model/utils/MergeGroups.h"
#include "model/utils/MergeRenderNodes.h"
#include "utils/MergeTestSupport.h"
#include "utils/ReferenceMerging.h"

namespace {

using namespace model;
using namespace model::utils;
using namespace mergetest;

std::vector<float> tags(const RenderNode& node) {
    std::vector<float> out;
    const auto& data = node.vertices.attribute(POSITION0).data;
    for (std::size_t i = 3; i < data.size(); i += 4) {
        out.push_back(data[i]);
    }
    return out;
}

MergeCounters rejected(MergeCounters::Reason reason, std::uint32_t n = 1) {
    MergeCounters c;
    c.counts[reason] = n;
    return c;
}

class MergeRenderNodesTest : public ::testing::Test {
protected:
    Scene s = makeScene();
    Ptr<Node> top = s.root->rootNode();
    MaterialRef material = makeMaterial("m");

    Ptr<RenderNode> add(const Ptr<Node>& parent, const MaterialPtr& m, float offset = 0,
                        const std::string& name = {}) {
        return addTriangle(s, parent, m, offset, name);
    }
    const RenderNode& only() const {
        EXPECT_EQ(s.root->renderNodes().size(), 1u);
        return static_cast<const RenderNode&>(*s.root->renderNodes().at(0));
    }
};

TEST_F(MergeRenderNodesTest, EqualMaterialsUnifyAndNodesOnOneParentShareOneEntryTaggedZero) {
    add(top, material, 0, "a");
    add(top, copyMaterial(material), 5, "b");
    EXPECT_EQ(mergeRenderNodes(*s.root), MergeCounters{});
    const RenderNode& merged = only();
    EXPECT_EQ(merged.name, "");
    EXPECT_EQ(merged.material.get(), material.get());
    ASSERT_EQ(merged.links.size(), 1u);
    EXPECT_EQ(merged.links[0].node, top);
    EXPECT_EQ(tags(merged), std::vector<float>(6, 0.0f));
    EXPECT_EQ(merged.indices.indices, (std::vector<std::uint32_t>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(merged.root, s.root.get());
}

TEST_F(MergeRenderNodesTest, FurtherParentsAreNumberedInTheFourthFloatAndTaggedVerticesKeepTheirNumber) {
    Ptr<Node> left = makeTreeNode<Node>(top);
    Ptr<Node> right = makeTreeNode<Node>(top);
    Ptr<RenderNode> first = add(left, material);
    first->properties.push_back(createFloatProperty("p", 2.0f + 1e-6f));
    first->version = 1;
    first->renderOption = 7;
    Ptr<RenderNode> second = add(right, material, 5);
    second->vertices.attribute(POSITION0).data[3] = 1.4f;  // rounds to 1: left as it is
    second->properties.push_back(createFloatProperty("p", 2.0f));
    add(left, material, 9)->properties.push_back(createFloatProperty("p", 2.0f));
    mergeRenderNodes(*s.root);
    const RenderNode& merged = only();
    ASSERT_EQ(merged.links.size(), 2u);
    EXPECT_EQ(merged.links[0].node, left);
    EXPECT_EQ(merged.links[1].node, right);
    // Member order is list order; the first node's tags stay as the exporter left them.
    EXPECT_EQ(tags(merged), (std::vector<float>{0, 0, 0, 1.4f, 1, 1, 0, 0, 0}));
    EXPECT_EQ(merged.indices.indices.back(), 8u);
    // The first member's user properties, class version and render option go over.
    EXPECT_EQ(merged.properties, first->properties);
    EXPECT_EQ(merged.version, 1u);
    EXPECT_EQ(merged.renderOption, 7u);
}

TEST_F(MergeRenderNodesTest, EmptyNodesGoBeforeGroupingAndAGroupOfOneMovesToTheEnd) {
    Ptr<RenderNode> empty = add(top, material);
    empty->indices.indices.clear();
    Ptr<RenderNode> alone = add(top, makeMaterial("other"), 0, "alone");
    Ptr<RenderNode> a = add(top, material, 1);
    Ptr<RenderNode> b = add(top, material, 2);
    Vertices before = alone->vertices;
    mergeRenderNodes(*s.root);
    ASSERT_EQ(s.root->renderNodes().size(), 2u);
    // All members go out of the list and the results come back in group order.
    EXPECT_EQ(s.root->renderNodes()[0].get(), alone.get());
    EXPECT_EQ(alone->name, "alone");
    EXPECT_EQ(alone->vertices, before);
    EXPECT_EQ(empty->root, nullptr);
    EXPECT_EQ(a->root, nullptr);

    Scene none = makeScene();
    Ptr<RenderNode> e = makeTriangle(none.root->rootNode(), material);
    e->indices.indices.resize(2);
    none.root->addRenderNode(e);
    mergeRenderNodes(*none.root);
    EXPECT_TRUE(none.root->renderNodes().empty());
}

TEST_F(MergeRenderNodesTest, LevelsOfDetailAndVisibilitySidesStayApart) {
    Ptr<LodNode> lod = makeTreeNode<LodNode>(top);
    add(makeTreeNode<Node>(lod), material);
    add(makeTreeNode<Node>(lod), material);
    EXPECT_EQ(mergeRenderNodes(*s.root), rejected(MergeCounters::kLod));
    EXPECT_EQ(s.root->renderNodes().size(), 2u);

    Scene v = makeScene();
    Ptr<ArgVisibilityNode> gate = makeTreeNode<ArgVisibilityNode>(v.root->rootNode());
    addTriangle(v, makeTreeNode<Node>(gate), material);
    addTriangle(v, v.root->rootNode(), material);
    EXPECT_EQ(mergeRenderNodes(*v.root), rejected(MergeCounters::kVisibility));
    // Two under the same gate merge: the walk stops at the common ancestor.
    addTriangle(v, gate, material);
    mergeRenderNodes(*v.root);
    EXPECT_EQ(v.root->renderNodes().size(), 2u);
}

TEST_F(MergeRenderNodesTest, StripsBlendingOneAndBillboardsNeverMerge) {
    add(top, material)->indices.primitive = kTriangleStrip;
    add(top, material)->indices.primitive = kTriangleStrip;
    EXPECT_EQ(mergeRenderNodes(*s.root), rejected(MergeCounters::kPrimitive));

    Scene t = makeScene();
    MaterialRef transparent = makeMaterial("glass", kUnmergedBlending);
    addTriangle(t, t.root->rootNode(), transparent);
    addTriangle(t, t.root->rootNode(), transparent);
    EXPECT_EQ(mergeRenderNodes(*t.root), rejected(MergeCounters::kBlendingOrBillboard));

    // The billboard test looks at the group's key only: a later node under a billboard may
    // join an earlier group, but nothing joins a key under a billboard.
    Scene b = makeScene();
    Ptr<BillboardNode> board = makeTreeNode<BillboardNode>(b.root->rootNode());
    addTriangle(b, board, material);
    addTriangle(b, b.root->rootNode(), material);
    EXPECT_EQ(mergeRenderNodes(*b.root), rejected(MergeCounters::kBlendingOrBillboard));
    EXPECT_EQ(b.root->renderNodes().size(), 2u);
}

TEST_F(MergeRenderNodesTest, RenderNodesWithoutMaterialFail) {
    add(top, MaterialPtr());
    add(top, MaterialPtr());
    EXPECT_EQ(failureOf([&] { mergeRenderNodes(*s.root); }), "Material of render node isn't set.");
}

TEST_F(MergeRenderNodesTest, NumberNodesNeedOneFloatOfColorOneAndItsLackIsNotCounted) {
    for (int i = 0; i < 2; ++i) {
        Ptr<NumberNode> n = makeTriangle<NumberNode>(makeTreeNode<Node>(top), material);
        n->entries = {{NumberEntry{{0, 0, 0, static_cast<std::uint32_t>(i)}}}};
        s.root->addRenderNode(n);
    }
    EXPECT_EQ(mergeRenderNodes(*s.root), MergeCounters{});
    EXPECT_EQ(s.root->renderNodes().size(), 2u);

    material->vertexFormat[COLOR1] = 1;
    mergeRenderNodes(*s.root);
    const auto& merged = dynamic_cast<const NumberNode&>(only());
    ASSERT_EQ(merged.entries.size(), 2u);
    EXPECT_EQ(merged.entries[0][0].words[3] + merged.entries[1][0].words[3], 1u);
}

TEST_F(MergeRenderNodesTest, FakeLightsJoinTheirParentsAndSpotShapesMustMatch) {
    Ptr<Node> other = makeTreeNode<Node>(top);
    for (const Ptr<Node>& parent : {top, other, top}) {
        Ptr<FakeOmniLightsNode> omni = createNodeAs<FakeOmniLightsNode>("model::FakeOmniLightsNode");
        omni->material = material;
        omni->links.push_back(parent);
        omni->lights.push_back(FakeOmniLight{});
        s.root->addRenderNode(omni);
    }
    for (float shape : {0.0f, 0.5f}) {
        Ptr<FakeSpotLightsNode> spot = createNodeAs<FakeSpotLightsNode>("model::FakeSpotLightsNode");
        spot->material = material;
        spot->links.push_back({top, {}});
        FakeSpotLight light;
        light.backTexLB = osg::Vec2f{{shape, 0}};
        spot->lights.push_back(light);
        s.root->addRenderNode(spot);
    }
    EXPECT_EQ(mergeRenderNodes(*s.root), rejected(MergeCounters::kSpotShape));
    ASSERT_EQ(s.root->renderNodes().size(), 3u);
    const auto& omni = dynamic_cast<const FakeOmniLightsNode&>(*s.root->renderNodes().front());
    EXPECT_EQ(omni.links, (std::vector<Ptr<Node>>{top, other}));
    ASSERT_EQ(omni.lights.size(), 3u);
    EXPECT_EQ(omni.lights[1].parent, 1u);
    EXPECT_EQ(omni.lights[2].parent, 0u);
}

TEST(MergeMembers, AMemberOfAnotherVertexLayoutFails) {
    Scene s = makeScene();
    MaterialRef m = makeMaterial("m");
    Ptr<RenderNode> a = makeTriangle(s.root->rootNode(), m);
    Ptr<RenderNode> b = makeTriangle(s.root->rootNode(), m);
    b->vertices.attributes.erase(NORMAL0);
    std::vector<Ptr<BaseRenderNode>> members{a, b};
    EXPECT_EQ(failureOf([&] { mergeMembers(MergeKind::RenderNode, members); }), "Wrong vertex size.");
}

TEST(MergeRenderNodes, IndexedGroupingGivesTheSameModelAndCountersAsTestingEveryGroup) {
    int failures = 0;
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        Scene fast = randomScene(seed);
        Scene slow = randomScene(seed);
        ASSERT_EQ(dumpModel(*fast.root, fast.materials), dumpModel(*slow.root, slow.materials));
        auto result = [](Scene& s, auto merge) {
            return outcomeOf([&] {
                MergeCounters c = merge(*s.root);
                return fmt::format("{}\n{}", fmt::join(c.counts, " "), dumpModel(*s.root, s.materials));
            });
        };
        std::string fastResult = result(fast, [](RootNode& r) { return mergeRenderNodes(r); });
        std::string slowResult = result(slow, [](RootNode& r) { return reference::mergeRenderNodes(r); });
        EXPECT_EQ(fastResult, slowResult);
        failures += fastResult.find('\n') == std::string::npos ? 1 : 0;
    }
    // Most scenes merge; a few end in a failure, which must be the same.
    EXPECT_LT(failures, 100);
}

}  // namespace
