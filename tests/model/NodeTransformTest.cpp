#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "model/AnimatedFakeLights.h"
#include "model/ArgAnimationNode.h"
#include "model/ArgVisibilityNode.h"
#include "model/NodeCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/SegmentsNode.h"
#include "model/ShellSkinNode.h"

namespace {

using namespace model;

struct Args : IModelArguments {
    std::map<std::uint32_t, float> values;
    float value(std::uint32_t a) const override {
        auto it = values.find(a);
        return it == values.end() ? 0.0f : it->second;
    }
};

void expectNear(const nq::Matrixd& a, const nq::Matrixd& b) {
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(a[i], b[i], 1e-9) << "element " << i;
    }
}

const double kHalfPi = std::acos(0.0);

// Rotation about z by angle, as a quaternion.
nq::Quatd aboutZ(double angle) {
    return nq::Quatd{{0, 0, std::sin(angle / 2), std::cos(angle / 2)}};
}

TEST(NodeTransforms, WorldTransformComposesChildFirst) {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    nq::Matrixd parentM = nq::scaleMatrix(nq::Vec3d{{2, 2, 2}});
    nq::Matrixd childM = nq::translateMatrix(nq::Vec3d{{1, 0, 0}});
    Ptr<TransformNode> parent = createTransformNode("p", parentM);
    root->setRootNode(parent);
    Ptr<Node> plain = createNode("plain");
    parent->append(plain);
    Ptr<TransformNode> child = createTransformNode("c", childM);
    plain->append(child);

    nq::Matrixd m;
    child->worldTransform(DummyArguments(), m);
    expectNear(m, childM * parentM);
    // The point (0,0,0) is moved by 1 then scaled by 2.
    EXPECT_NEAR(m.transformPoint(nq::Vec3d{})[0], 2.0, 1e-12);
}

TEST(NodeTransforms, PushTransformAbsorbsOrHandsTheProductOut) {
    nq::Matrixd own = nq::translateMatrix(nq::Vec3d{{0, 1, 0}});
    nq::Matrixd pushed = nq::scaleMatrix(nq::Vec3d{{3, 3, 3}});
    Ptr<TransformNode> keeps = createTransformNode("k", own);
    nq::Matrixd out = nq::Matrixd::identity();
    EXPECT_TRUE(keeps->pushTransform(out, pushed, false).isIdentity(0));
    expectNear(keeps->matrix, own * pushed);
    EXPECT_TRUE(out.isIdentity(0));

    Ptr<TransformNode> hands = createTransformNode("h", own);
    EXPECT_TRUE(hands->pushTransform(out, pushed, true).isIdentity(0));
    expectNear(out, own * pushed);
    EXPECT_TRUE(hands->matrix.isIdentity(0));

    Ptr<Node> plain = createNode("n");
    expectNear(plain->pushTransform(out, pushed, true), pushed);
}

TEST(NodeTransforms, VisibilityHoldsWithinARangeStartInclusiveEndExclusive) {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    Ptr<ArgVisibilityNode> gate = createNodeAs<ArgVisibilityNode>("model::ArgVisibilityNode");
    gate->entries.push_back(VisibilityEntry{4, {{0.0, 0.25}, {0.5, 1.0}}});
    root->setRootNode(gate);
    Ptr<Node> leaf = createNode("leaf");
    gate->append(leaf);

    auto visibleAt = [&](float v) {
        Args args;
        args.values[4] = v;
        bool visible = true;
        leaf->visibility(args, nullptr, visible);
        return visible;
    };
    EXPECT_TRUE(visibleAt(0.0f));
    EXPECT_FALSE(visibleAt(0.25f));
    EXPECT_FALSE(visibleAt(0.3f));
    EXPECT_TRUE(visibleAt(0.5f));
    EXPECT_FALSE(visibleAt(1.0f));

    // Already hidden: the parents are not asked and nothing turns it back on.
    bool visible = false;
    leaf->visibility(DummyArguments(), nullptr, visible);
    EXPECT_FALSE(visible);
}

TEST(NodeTransforms, AnimationRestMatrixAndKeyedValues) {
    Ptr<ArgAnimationNode> n = createNodeAs<ArgAnimationNode>("model::ArgAnimationNode");
    n->basePosition = nq::Vec3d{{1, 2, 3}};
    n->baseRotationA = aboutZ(kHalfPi);
    n->baseScale = nq::Vec3d{{2, 2, 2}};
    n->matrix = nq::translateMatrix(nq::Vec3d{{0, 0, 10}});
    nq::Matrixd expected = nq::scaleMatrix(n->baseScale) * nq::quatToMatrix(n->baseRotationA) *
                           nq::translateMatrix(n->basePosition) * n->matrix;
    expectNear(n->restMatrix(), expected);
    // Without keys the animated matrix is the rest matrix, whatever the arguments.
    Args args;
    args.values[2] = 0.5f;
    expectNear(n->animatedMatrix(args), expected);

    // A keyed position replaces the base position; between keys the value is interpolated.
    n->positionChannels.push_back(
        PositionChannel{2, {PositionKey{0.0, nq::Vec3d{{0, 0, 0}}}, PositionKey{1.0, nq::Vec3d{{4, 0, 0}}}}});
    nq::Matrixd at = n->animatedMatrix(args);
    nq::Vec3d origin = at.transformPoint(nq::Vec3d{});
    EXPECT_NEAR(origin[0], 2.0, 1e-12);
    EXPECT_NEAR(origin[1], 0.0, 1e-12);
    EXPECT_NEAR(origin[2], 10.0, 1e-12);
    args.values[2] = 7.0f;  // held at the last key
    EXPECT_NEAR(n->animatedMatrix(args).transformPoint(nq::Vec3d{})[0], 4.0, 1e-12);

    // The world transform uses the animated matrix.
    nq::Matrixd world;
    n->worldTransform(args, world);
    expectNear(world, n->animatedMatrix(args));

    // A keyed rotation halfway between 0 and 90 degrees turns x by 45 degrees.
    Ptr<ArgAnimationNode> r = createNodeAs<ArgAnimationNode>("model::ArgAnimationNode");
    r->rotationChannels.push_back(
        RotationChannel{1, {RotationKey{0.0, aboutZ(0)}, RotationKey{1.0, aboutZ(kHalfPi)}}});
    Args half;
    half.values[1] = 0.5f;
    nq::Vec3d x = r->animatedMatrix(half).transformVector(nq::Vec3d{{1, 0, 0}});
    EXPECT_NEAR(x[0], std::sqrt(0.5), 1e-9);
    EXPECT_NEAR(std::fabs(x[1]), std::sqrt(0.5), 1e-9);
}

// A render node with two parents: vertices 0-2 tagged 0, vertices 3-5 tagged 1.
Ptr<RenderNode> twoParentMesh() {
    Ptr<RenderNode> r = createNodeAs<RenderNode>("model::RenderNode");
    r->links = {RenderLink{createNode("p0")}, RenderLink{createNode("p1")}};
    std::vector<float> pos, nrm;
    for (int v = 0; v < 6; ++v) {
        float tag = v < 3 ? 0.0f : 1.0f;
        pos.insert(pos.end(), {static_cast<float>(v % 3 == 1), static_cast<float>(v % 3 == 2), 0.0f, tag});
        nrm.insert(nrm.end(), {0.0f, 0.0f, 1.0f});
    }
    r->vertices.setAttribute(POSITION0, 4, pos);
    r->vertices.setAttribute(NORMAL0, 3, nrm);
    // A tilted normal shows the inverse-transpose: (1, 1, 0)/sqrt2 on the first vertex.
    r->vertices.attribute(NORMAL0).data[0] = std::sqrt(0.5f);
    r->vertices.attribute(NORMAL0).data[1] = std::sqrt(0.5f);
    r->vertices.attribute(NORMAL0).data[2] = 0.0f;
    r->indices = Indices(kTriangleList, {0, 1, 2, 3, 4, 5});
    return r;
}

TEST(NodeTransforms, RenderNodeBakesOnlyTheVerticesOfTheLink) {
    Ptr<RenderNode> r = twoParentMesh();
    nq::Matrixd m = nq::scaleMatrix(nq::Vec3d{{2, 1, 1}}) * nq::translateMatrix(nq::Vec3d{{0, 0, 5}});
    ASSERT_TRUE(r->applyTransform(1, m));
    const std::vector<float>& pos = r->vertices.attribute(POSITION0).data;
    // Link 0 untouched.
    EXPECT_EQ(pos[4], 1.0f);
    EXPECT_EQ(pos[2], 0.0f);
    // Link 1: x doubled, z moved, tag kept.
    EXPECT_EQ(pos[4 * 4 + 0], 2.0f);
    EXPECT_EQ(pos[4 * 4 + 2], 5.0f);
    EXPECT_EQ(pos[4 * 4 + 3], 1.0f);
    EXPECT_EQ(r->indices.indices, (std::vector<std::uint32_t>{0, 1, 2, 3, 4, 5}));

    // The tilted normal of link 0 under a stretch along x: the inverse-transpose leans it
    // towards y, and it stays of unit length.
    Ptr<RenderNode> s = twoParentMesh();
    ASSERT_TRUE(s->applyTransform(0, nq::scaleMatrix(nq::Vec3d{{2, 1, 1}})));
    const std::vector<float>& n = s->vertices.attribute(NORMAL0).data;
    EXPECT_NEAR(n[0], 1 / std::sqrt(5.0), 1e-6);
    EXPECT_NEAR(n[1], 2 / std::sqrt(5.0), 1e-6);
    EXPECT_NEAR(n[2], 0.0, 1e-6);
    // Vertex 3 belongs to link 1 and keeps its normal.
    EXPECT_EQ(n[9 + 2], 1.0f);
}

TEST(NodeTransforms, MirroringKeepsTheWindingOfAnyPrimitive) {
    nq::Matrixd mirror = nq::scaleMatrix(nq::Vec3d{{-1, 1, 1}});
    Ptr<RenderNode> r = twoParentMesh();
    ASSERT_TRUE(r->applyTransform(0, mirror));
    EXPECT_EQ(r->indices.indices, (std::vector<std::uint32_t>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(r->vertices.attribute(POSITION0).data[4], -1.0f);

    // Strips and triangles across two links take the matrix too: only their positions move.
    Ptr<RenderNode> strip = twoParentMesh();
    strip->indices = Indices(kTriangleStrip, {0, 1, 3, 4});
    ASSERT_TRUE(strip->applyTransform(0, mirror));
    EXPECT_EQ(strip->indices.indices, (std::vector<std::uint32_t>{0, 1, 3, 4}));
    EXPECT_EQ(strip->vertices.attribute(POSITION0).data[4], -1.0f);

    // Projective matrices are refused.
    Ptr<RenderNode> p = twoParentMesh();
    nq::Matrixd projective;
    projective(0, 3) = 1;
    EXPECT_FALSE(p->applyTransform(0, projective));
    EXPECT_THROW(p->applyTransform(2, mirror), std::out_of_range);
}

TEST(NodeTransforms, SegmentsAndFakeLightsTakeTheMatrixSkinsAndAnimatedLightsRefuse) {
    nq::Matrixd m = nq::quatToMatrix(aboutZ(kHalfPi)) * nq::scaleMatrix(nq::Vec3d{{2, 2, 2}}) *
                    nq::translateMatrix(nq::Vec3d{{0, 0, 1}});
    Ptr<SegmentsNode> seg = createNodeAs<SegmentsNode>("model::SegmentsNode");
    seg->segments.push_back(Segment{osg::Vec3f{{1, 0, 0}}, osg::Vec3f{{0, 0, 0}}});
    ASSERT_TRUE(seg->applyTransform(0, m));
    EXPECT_NEAR(seg->segments[0].a[0], 0.0, 1e-6);
    EXPECT_NEAR(seg->segments[0].a[1], 2.0, 1e-6);
    EXPECT_NEAR(seg->segments[0].a[2], 1.0, 1e-6);

    Ptr<FakeSpotLightsNode> spots = createNodeAs<FakeSpotLightsNode>("model::FakeSpotLightsNode");
    spots->links = {FakeSpotLink{createNode("a"), osg::Vec3f{{1, 0, 0}}}, FakeSpotLink{createNode("b"), {}}};
    FakeSpotLight onA;
    onA.position = nq::Vec3d{{1, 0, 0}};
    onA.size = 0.5f;
    FakeSpotLight onB = onA;
    onB.parent = 1;
    spots->lights = {onA, onB};
    spots->directions = {osg::Vec3f{{1, 0, 0}}, osg::Vec3f{{1, 0, 0}}};
    ASSERT_TRUE(spots->applyTransform(0, m));
    EXPECT_NEAR(spots->lights[0].position[1], 2.0, 1e-12);
    EXPECT_NEAR(spots->lights[0].size, 1.0f, 1e-6);
    EXPECT_NEAR(spots->links[0].direction[1], 2.0f, 1e-6);
    EXPECT_NEAR(spots->directions[0][1], 2.0f, 1e-6);
    EXPECT_EQ(spots->lights[1], onB);
    EXPECT_EQ(spots->directions[1], (osg::Vec3f{{1, 0, 0}}));

    // A stretch would make round sprites oval: refused, nothing moved.
    EXPECT_FALSE(spots->applyTransform(1, nq::scaleMatrix(nq::Vec3d{{1, 2, 1}})));
    EXPECT_EQ(spots->lights[1], onB);

    Ptr<AnimatedFakeOmniLightsNode> animated =
        createNodeAs<AnimatedFakeOmniLightsNode>("model::AnimatedFakeOmniLightsNode");
    animated->links = {createNode("c")};
    EXPECT_FALSE(animated->applyTransform(0, m));
    Ptr<ShellSkinNode> skin = createNodeAs<ShellSkinNode>("model::ShellSkinNode");
    skin->bones = {createNode("self")};
    EXPECT_FALSE(skin->applyTransform(0, m));
    EXPECT_FALSE(createNodeAs<Connector>("model::Connector")->applyTransform(0, m));
}

}  // namespace
