#include <gtest/gtest.h>

#include <bit>
#include <cmath>

#include "OptimizerModels.h"
#include "model/ArgAnimatedBone.h"
#include "model/ArgVisibilityNode.h"
#include "model/Bone.h"
#include "model/utils/LinkIndex.h"
#include "model/utils/Optimizers.h"

namespace {

using namespace optimizer_test;
using model::utils::OptimizerRound;
using Rounds = std::vector<OptimizerRound>;

const nq::Matrixd kMove = nq::translateMatrix(nq::Vec3d{{1, 2, 3}});
// The triangle of Model::triangleOn moved by kMove.
const std::vector<float> kMovedTriangle{1, 2, 3, 2, 2, 3, 1, 3, 3};

// Runs the optimiser over the index, as the exporter does.
Rounds optimize(Model& m) {
    model::utils::LinkIndex links(*m.root);
    model::utils::NodeHelpers helpers;
    links.fill(helpers);
    return model::utils::optimizeTransformations(*m.root, std::move(helpers));
}

// A plain root "r" over a transform "t" that carries a render node.
struct TransformUnderRoot : Model {
    Ptr<Node> r = plain(nullptr, "r");
    Ptr<TransformNode> t;
    Ptr<RenderNode> rn;
    explicit TransformUnderRoot(const nq::Matrixd& m) : t(transform(r, "t", m)), rn(triangleOn(t)) {}
};

TEST(Optimizers, PlainTreeWithoutUsersCollapsesToOneNode) {
    Model m;
    Ptr<Node> r = m.plain(nullptr, "r");
    Ptr<Node> a = m.plain(r, "a");
    m.plain(m.plain(a, "b"), "c");
    m.plain(r, "d");

    optimize(m);

    ASSERT_TRUE(m.top());
    EXPECT_EQ(m.top()->nodeType(), NodeType::Node);
    EXPECT_FALSE(m.top()->hasChildren());
    EXPECT_EQ(a->name, "_DELETED_");
}

TEST(Optimizers, IdentityTransformGivesItsUserToTheParentInOneRound) {
    nq::Matrixd nearIdentity;
    nearIdentity[12] = 9e-6;  // within 1e-5
    TransformUnderRoot m(nearIdentity);

    EXPECT_EQ(optimize(m), (Rounds{{1, 1, 0, 0, 0}, {}}));
    EXPECT_EQ(m.top(), m.r);
    EXPECT_FALSE(m.r->hasChildren());
    EXPECT_EQ(m.rn->link(0), m.r);
    EXPECT_EQ(m.rn->vertices.attribute(POSITION0).data[3], 1.0f);  // nothing baked
    EXPECT_EQ(m.t->name, "_DELETED_");
}

TEST(Optimizers, StaticTransformIsBakedIntoItsRenderNodeAndDies) {
    TransformUnderRoot m(kMove);

    // Round 1 bakes and collapses the root onto the new plain node; round 2 removes the transform.
    EXPECT_EQ(optimize(m), (Rounds{{0, 0, 0, 1, 0}, {0, 0, 1, 0, 0}, {}}));
    EXPECT_EQ(m.top()->nodeType(), NodeType::Node);
    EXPECT_EQ(m.top()->name, "");
    EXPECT_FALSE(m.top()->hasChildren());
    EXPECT_EQ(m.rn->link(0), m.top());
    EXPECT_EQ(m.rn->vertices.attribute(POSITION0).data, kMovedTriangle);
    EXPECT_EQ(m.r->name, "_DELETED_");
    EXPECT_EQ(m.t->name, "_DELETED_");
}

TEST(Optimizers, LodChildrenStayAndATransformUnderALodStopsThePass) {
    TransformUnderRoot m(kMove);
    Ptr<Node> lod = m.add(m.r, "model::LodNode", "lod");
    m.plain(lod, "near");  // a dead end and a dummy, but its place counts
    Ptr<TransformNode> far = m.transform(lod, "far", kMove);
    Ptr<RenderNode> kept = m.triangleOn(far);

    // "t" is baked before the pass stops, and still nothing counts, so the main loop ends with
    // the new plain node and the dead transform left in place.
    EXPECT_EQ(optimize(m), (Rounds{{}}));
    EXPECT_EQ(m.rn->vertices.attribute(POSITION0).data, kMovedTriangle);
    Ptr<Node> above = m.rn->link(0);
    EXPECT_EQ(above->nodeType(), NodeType::Node);
    EXPECT_EQ(above->parent(), m.r);
    EXPECT_EQ(m.t->parent(), above);
    std::vector<Ptr<Node>> children = lod->children();
    ASSERT_EQ(children.size(), 2u);
    EXPECT_EQ(children[0]->name, "near");
    EXPECT_EQ(children[1], far);
    EXPECT_EQ(kept->link(0), far);
    EXPECT_EQ(kept->vertices.attribute(POSITION0).data[0], 0.0f);
}

TEST(Optimizers, TransformRootEndsEveryMovePass) {
    Model m;
    Ptr<TransformNode> t = m.transform(m.transform(nullptr, "top", kMove), "t", kMove);
    Ptr<RenderNode> rn = m.triangleOn(t);

    EXPECT_EQ(optimize(m), (Rounds{{}}));
    EXPECT_EQ(rn->link(0), t);
    EXPECT_EQ(rn->vertices.attribute(POSITION0).data[0], 0.0f);
}

TEST(Optimizers, BoneBlocksTheTransformAbove) {
    Model m;
    Ptr<TransformNode> t = m.transform(m.plain(nullptr, "r"), "t", kMove);
    auto bone = m.add<Bone>(t, "model::Bone", "bone");
    Ptr<RenderNode> rn = m.triangleOn(bone);

    optimize(m);

    // The plain root gave way to the transform; the bone is still under it, unchanged.
    EXPECT_EQ(m.top(), t);
    EXPECT_EQ(t->matrix, kMove);
    EXPECT_EQ(bone->parent(), t);
    EXPECT_EQ(bone->matrix, nq::Matrixd::identity());
    EXPECT_EQ(rn->link(0), bone);
}

TEST(Optimizers, TransformSlidesPastAnimationAndPlainNodes) {
    Model m;
    Ptr<TransformNode> t = m.transform(m.plain(nullptr, "r"), "t", kMove);
    auto anim = m.add<ArgAnimationNode>(t, "model::ArgAnimationNode", "anim");
    anim->positionChannels.push_back(PositionChannel{1, {PositionKey{0, {}}, PositionKey{1, {{1, 0, 0}}}}});
    auto gate = m.add<ArgVisibilityNode>(t, "model::ArgVisibilityNode", "gate");
    gate->entries.push_back(VisibilityEntry{2, {{0.0, 0.5}}});
    Ptr<Node> b = m.add(gate, "model::Bone", "b");
    Ptr<TestUser> u = m.user();
    for (const Ptr<Node>& n : {Ptr<Node>(gate), b, Ptr<Node>(anim)}) {
        u->addLink(n, false);
    }

    optimize(m);

    // The animation took the matrix into its base; the gate got a copy of the transform under it,
    // holding its user and its child.
    EXPECT_EQ(anim->matrix, kMove);
    EXPECT_EQ(anim->parent(), m.top());
    ASSERT_EQ(gate->children().size(), 1u);
    Ptr<Node> copy = gate->firstChild();
    EXPECT_EQ(copy->nodeType(), NodeType::TransformNode);
    EXPECT_EQ(copy->name, "t");
    EXPECT_EQ(static_cast<TransformNode&>(*copy).matrix, kMove);
    EXPECT_EQ(u->link(0), copy);
    EXPECT_EQ(copy->firstChild(), b);
    EXPECT_EQ(t->name, "_DELETED_");
}

TEST(Optimizers, NodesWithoutKeysBecomeStaticNodes) {
    Model m;
    Ptr<Node> r = m.plain(nullptr, "r");
    auto moved = m.add<ArgAnimationNode>(r, "model::ArgAnimationNode", "moved");
    moved->basePosition = nq::Vec3d{{1, 2, 3}};
    Ptr<RenderNode> rn = m.triangleOn(moved);
    auto still = m.add<ArgAnimationNode>(r, "model::ArgAnimationNode", "still");
    still->positionChannels.push_back(PositionChannel{1, {}});  // a channel without keys is void
    auto bone = m.add<ArgAnimatedBone>(r, "model::ArgAnimatedBone", "bone");
    bone->baseRotationA = nq::Quatd{{0, 0, std::sqrt(0.5), std::sqrt(0.5)}};
    bone->baseScale = nq::Vec3d{{2, 2, 2}};
    bone->boneMatrix = kMove;
    auto gate = m.add<ArgVisibilityNode>(r, "model::ArgVisibilityNode", "gate");
    gate->entries.push_back(VisibilityEntry{3, {}});
    auto keyedGate = m.add<ArgVisibilityNode>(r, "model::ArgVisibilityNode", "keyed");
    keyedGate->entries = {VisibilityEntry{3, {}}, VisibilityEntry{4, {{0.0, 1.0}}}};
    Ptr<TestUser> u = m.user();
    for (const Ptr<Node>& n : {Ptr<Node>(still), Ptr<Node>(bone), Ptr<Node>(gate), Ptr<Node>(keyedGate)}) {
        u->addLink(n, false);
    }

    Rounds rounds = optimize(m);

    // Round 1 turns four, removes the two plain ones, and bakes the new transform.
    ASSERT_GE(rounds.size(), 2u);
    EXPECT_EQ(rounds[0].emptyNodes, 4u);
    EXPECT_EQ(rounds[0].dummyNodes, 2u);
    EXPECT_EQ(rounds[0].transforms, 1u);
    EXPECT_EQ(rn->vertices.attribute(POSITION0).data, kMovedTriangle);
    EXPECT_EQ(u->link(0), r);
    EXPECT_EQ(u->link(2), r);
    EXPECT_EQ(u->link(3), keyedGate);

    Ptr<Node> newBone = u->link(1);
    ASSERT_EQ(newBone->nodeType(), NodeType::Bone);
    EXPECT_EQ(newBone->name, "bone");
    auto& b = static_cast<Bone&>(*newBone);
    EXPECT_EQ(b.boneMatrix, kMove);
    nq::Matrixd expected = nq::scaleMatrix(nq::Vec3d{{2, 2, 2}}) * nq::quatToMatrix(bone->baseRotationA);
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(b.matrix[i], expected[i], 1e-12) << i;
    }
    EXPECT_EQ(moved->name, "_DELETED_");
    EXPECT_EQ(bone->name, "_DELETED_");
}

TEST(Optimizers, HalfBakedUserKeepsTheTransformAlive) {
    Model m;
    Ptr<TransformNode> t = m.transform(m.plain(nullptr, "r"), "t", kMove);
    Ptr<TestUser> u = m.user();
    u->addLink(t, false);
    u->addLink(t, true);

    EXPECT_EQ(optimize(m), (Rounds{{0, 0, 0, 1, 0}, {}}));
    Ptr<Node> above = u->link(1);
    EXPECT_EQ(above, m.top());
    EXPECT_EQ(above->nodeType(), NodeType::Node);
    EXPECT_EQ(u->link(0), t);
    EXPECT_EQ(t->parent(), above);
    EXPECT_EQ(t->name, "t");
    EXPECT_EQ(u->baked[1], kMove);
    EXPECT_EQ(u->baked[0], nq::Matrixd::identity());
}

TEST(Optimizers, PlainRootWithOneChildIsNotCollapsedWhileLinked) {
    Model m;
    Ptr<Node> r = m.plain(nullptr, "r");
    Ptr<Node> lod = m.add(r, "model::LodNode", "lod");
    m.plain(lod, "a");
    Ptr<TestUser> u = m.user();
    u->addLink(r, false);

    EXPECT_EQ(optimize(m), (Rounds{{}}));
    EXPECT_EQ(m.top(), r);

    u->setLink(0, lod);
    EXPECT_EQ(optimize(m), (Rounds{{}}));
    EXPECT_EQ(m.top(), lod);
    EXPECT_EQ(r->name, "_DELETED_");

    Model empty;
    model::optimizeTransformations(empty.root.get());
    model::optimizeTransformations(nullptr);
    EXPECT_FALSE(empty.top());
}

TEST(RescaleAnimationKeys, ScalesEveryKeyTimeAndNothingElse) {
    Model m;
    Ptr<Node> r = m.plain(nullptr, "r");
    auto anim = m.add<ArgAnimatedBone>(r, "model::ArgAnimatedBone", "a");
    anim->positionChannels.push_back(
        PositionChannel{1, {PositionKey{0.1, {{5, 6, 7}}}, PositionKey{0.7, {}}}});
    anim->rotationChannels.push_back(RotationChannel{2, {RotationKey{1.0 / 3, {}}}});
    anim->scaleChannels.push_back(ScaleChannel{3, {RotationKey{0.3, {}}}, {ScaleKey{-0.0, {{2, 2, 2}}}}});
    auto gate = m.add<ArgVisibilityNode>(anim, "model::ArgVisibilityNode", "g");
    gate->entries.push_back(VisibilityEntry{4, {{0.2, 1e-300}, {0.5, 0.9}}});

    rescaleAnimationKeys(r, 1.0);
    auto bits = [](double d) { return std::bit_cast<std::uint64_t>(d); };
    EXPECT_EQ(bits(anim->positionChannels[0].keys[0].time), bits(0.1));
    EXPECT_EQ(bits(anim->rotationChannels[0].keys[0].time), bits(1.0 / 3));
    EXPECT_EQ(bits(anim->scaleChannels[0].scaleKeys[0].time), bits(-0.0));
    EXPECT_EQ(bits(gate->entries[0].ranges[0].second), bits(1e-300));

    rescaleAnimationKeys(r, 2.0);
    EXPECT_EQ(anim->positionChannels[0].keys[0].time, 0.2);
    EXPECT_EQ(anim->positionChannels[0].keys[1].time, 1.4);
    EXPECT_EQ(anim->positionChannels[0].keys[0].value, (nq::Vec3d{{5, 6, 7}}));
    EXPECT_EQ(anim->rotationChannels[0].keys[0].time, 2.0 / 3);
    EXPECT_EQ(anim->scaleChannels[0].rotationKeys[0].time, 0.6);
    EXPECT_EQ(anim->scaleChannels[0].scaleKeys[0].value, (nq::Vec3d{{2, 2, 2}}));
    EXPECT_EQ(gate->entries[0].ranges[1], (std::pair<double, double>{1.0, 1.8}));
}

}  // namespace
