#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "model/ArgAnimationNode.h"
#include "model/TransformNode.h"
#include "model/utils/NormalSmoother.h"
#include "model/utils/Optimizers.h"
#include "utils/MergeTestSupport.h"
#include "utils/ReferenceSmoothing.h"

namespace {

using namespace model;
using namespace model::utils;
using namespace mergetest;

using Point = std::array<float, 3>;

const double kHalfRoot = std::sqrt(0.5);

nq::Matrixd translation(double x, double y, double z) {
    return nq::translateMatrix(nq::Vec3d{{x, y, z}});
}

nq::Matrixd matrixOf(const std::array<double, 16>& elements) {
    nq::Matrixd m;
    m.m = elements;
    return m;
}

// Turns +z to +x.
const nq::Matrixd kTurn = matrixOf({0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1});
const nq::Matrixd kTurnAndMove = matrixOf({0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0.001, 0, 0, 1});

class NormalSmootherTest : public ::testing::Test {
protected:
    Scene s = makeScene();
    Ptr<Node> top = s.root->rootNode();
    MaterialRef material = makeMaterial("m");
    NormalSmoother smoother;

    // A render node with the given corners, one normal for all of them, listed in the model.
    Ptr<RenderNode> mesh(const std::string& name, const std::vector<Point>& points, Point normal,
                         const Ptr<Node>& parent = {}) {
        Ptr<RenderNode> node = makeTriangle(parent ? parent : top, material, 0, name);
        node->vertices = meshVertices(points);
        auto& n = node->vertices.attribute(NORMAL0).data;
        for (std::size_t i = 0; i < n.size(); i += 3) {
            std::copy(normal.begin(), normal.end(), n.begin() + static_cast<std::ptrdiff_t>(i));
        }
        s.root->addRenderNode(node);
        return node;
    }

    // A static transform under the top node.
    Ptr<Node> placed(const nq::Matrixd& m) {
        Ptr<TransformNode> t = makeTreeNode<TransformNode>(top);
        t->matrix = m;
        return t;
    }

    void collect(const Ptr<RenderNode>& node, std::uint32_t group) {
        std::vector<std::uint32_t> groups(node->vertices.vertexCount(), group);
        smoother.collect(node, groups);
    }

    void smooth() {
        smoother.gather();
        EXPECT_EQ(smoother.clusters(), smoothtest::referenceClusters(smoother.nodes()));
        smoother.apply();
    }

    static Point normalOf(const RenderNode& node, std::size_t i) {
        const auto& n = node.vertices.attribute(NORMAL0).data;
        return {n[3 * i], n[3 * i + 1], n[3 * i + 2]};
    }
};

void expectNear(Point actual, Point expected) {
    for (int k = 0; k < 3; ++k) {
        EXPECT_NEAR(actual[k], expected[k], 1e-6) << "component " << k;
    }
}

TEST_F(NormalSmootherTest, QuadsSharingAnEdgeGetEqualNormalsOnlyWithACommonGroup) {
    for (std::uint32_t groupB : {1u, 3u, 2u}) {
        SCOPED_TRACE(groupB);
        smoother.reset();
        // A faces +z in the world; B is built facing +z too, and its world transform turns it to
        // face +x, so that A's edge at x = 0 is also B's.
        Ptr<RenderNode> a = mesh("a", {{-1, 0, 0}, {0, 0, 0}, {0, 1, 0}, {-1, 1, 0}}, {0, 0, 1});
        Ptr<RenderNode> b = mesh("b", {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {0, 0, 1}, placed(kTurn));
        collect(a, 1);
        collect(b, groupB);
        smooth();
        if (groupB & 1u) {
            // The shared corners, in world space (s, 0, s); in B's own space (-s, 0, s).
            expectNear(normalOf(*a, 1), {float(kHalfRoot), 0, float(kHalfRoot)});
            expectNear(normalOf(*a, 2), {float(kHalfRoot), 0, float(kHalfRoot)});
            expectNear(normalOf(*b, 0), {float(-kHalfRoot), 0, float(kHalfRoot)});
            expectNear(normalOf(*b, 3), {float(-kHalfRoot), 0, float(kHalfRoot)});
        } else {
            EXPECT_TRUE(smoother.clusters().empty());
            EXPECT_EQ(normalOf(*a, 1), (Point{0, 0, 1}));
            EXPECT_EQ(normalOf(*b, 0), (Point{0, 0, 1}));
        }
        // Corners away from the edge keep their own.
        EXPECT_EQ(normalOf(*a, 0), (Point{0, 0, 1}));
        EXPECT_EQ(normalOf(*b, 1), (Point{0, 0, 1}));
        s.root->removeRenderNode(a.get());
        s.root->removeRenderNode(b.get());
    }
}

TEST_F(NormalSmootherTest, ToleranceIsInclusiveInDoublePrecision) {
    // The boxes overlap; only the first corners lie close, 0.001 or 0.0011 apart in x.
    for (double gap : {0.001, 0.0011, -0.001}) {
        SCOPED_TRACE(gap);
        smoother.reset();
        Ptr<RenderNode> a = mesh("a", {{0, 0, 0}, {1, 0, 0}, {-1, 0, 0}}, {0, 1, 0});
        Ptr<RenderNode> b = mesh("b", {{0, 0, 0}, {0, 0, 1}}, {1, 0, 0}, placed(translation(gap, 0, 0)));
        collect(a, 1);
        collect(b, 1);
        smooth();
        if (std::fabs(gap) <= 0.001) {
            ASSERT_EQ(smoother.clusters().size(), 1u);
            expectNear(normalOf(*a, 0), {float(kHalfRoot), float(kHalfRoot), 0});
            EXPECT_EQ(normalOf(*a, 0), normalOf(*b, 0));
        } else {
            EXPECT_TRUE(smoother.clusters().empty());
        }
        s.root->removeRenderNode(a.get());
        s.root->removeRenderNode(b.get());
    }
}

TEST_F(NormalSmootherTest, DisjointBoxesAreNeverCompared) {
    // The corners lie 0.0005 apart but the boxes (each a single point) do not touch.
    Ptr<RenderNode> a = mesh("a", {{0, 0, 0}}, {0, 1, 0});
    Ptr<RenderNode> b = mesh("b", {{0, 0, 0}}, {1, 0, 0}, placed(translation(0.0005, 0, 0)));
    collect(a, 1);
    collect(b, 1);
    smooth();
    EXPECT_TRUE(smoother.clusters().empty());
}

TEST_F(NormalSmootherTest, VerticesOfOneNodeAreNotMergedWithEachOther) {
    // Two coincident corners in a, with different normals.
    Ptr<RenderNode> a = mesh("a", {{0, 0, 0}, {0, 0, 0}, {1, 1, 1}}, {0, 1, 0});
    a->vertices.attribute(NORMAL0).data[3] = 1;
    a->vertices.attribute(NORMAL0).data[4] = 0;
    collect(a, 1);
    smooth();
    EXPECT_TRUE(smoother.clusters().empty());
    EXPECT_EQ(normalOf(*a, 1), (Point{1, 0, 0}));

    // With a third corner in b at the same place: the first corner of a heads the cluster, the
    // second finds that cluster by its head and adds b's corner once more, but is not itself a
    // member, so it keeps its normal.
    Ptr<RenderNode> b = mesh("b", {{0, 0, 0}, {1, 1, 1}}, {0, 0, 1});
    collect(b, 1);
    smooth();
    ASSERT_EQ(smoother.clusters().size(), 2u);
    EXPECT_EQ(smoother.clusters()[0], (SmoothCluster{{0, 0}, {{1, 0}, {1, 0}}}));
    EXPECT_EQ(normalOf(*a, 1), (Point{1, 0, 0}));
    double l = std::sqrt(5.0);
    expectNear(normalOf(*a, 0), {0, float(1 / l), float(2 / l)});
    expectNear(normalOf(*b, 0), {0, float(1 / l), float(2 / l)});
}

TEST_F(NormalSmootherTest, CancellingNormalsLeaveZeroAndNameTheirNodes) {
    Ptr<RenderNode> up = mesh("up", {{0, 0, 0}, {1, 0, 0}}, {0, 0, 1});
    Ptr<RenderNode> down = mesh("down", {{0, 0, 0}, {-1, 0, 0}}, {0, 0, -1});
    Ptr<RenderNode> apart = mesh("apart", {{5, 5, 5}, {6, 6, 6}}, {0, 0, -1});
    collect(up, 1);
    collect(down, 1);
    collect(apart, 1);
    EXPECT_TRUE(smoother.zeroNormalNodes().empty());
    smooth();
    EXPECT_EQ(normalOf(*up, 0), (Point{0, 0, 0}));
    EXPECT_EQ(normalOf(*down, 0), (Point{0, 0, 0}));
    EXPECT_EQ(normalOf(*up, 1), (Point{0, 0, 1}));
    EXPECT_EQ(smoother.zeroNormalNodes(), (std::vector<std::string>{"up", "down"}));
}

TEST_F(NormalSmootherTest, OnlyNodesThatMoveTogetherMerge) {
    Ptr<ArgAnimationNode> door = makeTreeNode<ArgAnimationNode>(top, "door");
    Ptr<Node> hinge = makeTreeNode<Node>(door, "hinge");
    Ptr<RenderNode> frame = mesh("frame", {{0, 0, 0}, {1, 0, 0}}, {0, 1, 0});
    Ptr<RenderNode> leaf = mesh("leaf", {{0, 0, 0}, {-1, 0, 0}}, {1, 0, 0}, hinge);
    Ptr<RenderNode> handle = mesh("handle", {{0, 0, 0}, {0, -1, 0}}, {0, 0, 1}, door);
    EXPECT_EQ(smoothKeyOf(*frame), 0u);
    EXPECT_EQ(smoothKeyOf(*leaf), smoothKeyOf(*handle));
    EXPECT_NE(smoothKeyOf(*leaf), 0u);
    Ptr<SkinNode> skin = createNodeAs<SkinNode>("model::SkinNode");
    EXPECT_EQ(smoothKeyOf(*skin), 1u);

    for (const auto& n : {frame, leaf, handle}) {
        collect(n, 1);
    }
    smooth();
    // Only the two parts of the door meet.
    ASSERT_EQ(smoother.clusters().size(), 1u);
    EXPECT_EQ(smoother.clusters()[0], (SmoothCluster{{1, 0}, {{2, 0}}}));
    EXPECT_EQ(normalOf(*frame, 0), (Point{0, 1, 0}));
}

TEST_F(NormalSmootherTest, CollectChecksItsInputAndGatherDropsNodesThatLeftTheModel) {
    Ptr<RenderNode> a = mesh("a", {{0, 0, 0}, {1, 0, 0}}, {0, 1, 0});
    std::vector<std::uint32_t> one{1};
    EXPECT_EQ(failureOf([&] { smoother.collect(a, one); }),
              "Smoothing groups for 1 vertices given to node 'a' of 2 vertices.");
    // Without normals there is nothing to smooth.
    Ptr<RenderNode> bare = mesh("bare", {{0, 0, 0}}, {0, 1, 0});
    bare->vertices.attributes.erase(NORMAL0);
    smoother.collect(bare, one);
    EXPECT_TRUE(smoother.nodes().empty());

    Ptr<RenderNode> b = mesh("b", {{0, 0, 0}, {-1, 0, 0}}, {1, 0, 0});
    collect(a, 1);
    collect(b, 1);
    s.root->removeRenderNode(b.get());
    smooth();
    ASSERT_EQ(smoother.nodes().size(), 1u);
    EXPECT_TRUE(smoother.clusters().empty());
    EXPECT_EQ(normalOf(*a, 0), (Point{0, 1, 0}));

    // A node whose vertices changed in between is refused before anything is written.
    a->vertices = meshVertices({{0, 0, 0}});
    EXPECT_EQ(failureOf([&] { smoother.gather(); }),
              "Node 'a' changed its vertices between collecting and smoothing");
}

// Random scenes: small lattices of corners, so that many lie on the tolerance's edge, nodes
// under a few transforms, some under an animation node, some corners without groups or not
// finite. The indexed search must give the plain walk's clusters, and the normals written from
// either must be the same bits.
struct RandomScene {
    Scene scene = makeScene();
    NormalSmoother smoother;
    std::vector<Ptr<RenderNode>> nodes;
};

// A render node on parent with the given corners and normals drawn from -2 to 2 by below, listed
// in the model and collected.
template <class Below>
void addCollected(RandomScene& out, const Ptr<Node>& parent, const MaterialRef& material, int i,
                  const std::vector<Point>& points, const std::vector<std::uint32_t>& groups, Below& below) {
    Ptr<RenderNode> node = makeTriangle(parent, material, 0, fmt::format("n{}", i));
    node->vertices = meshVertices(points);
    for (float& f : node->vertices.attribute(NORMAL0).data) {
        f = static_cast<float>(below(5) - 2);
    }
    out.scene.root->addRenderNode(node);
    out.nodes.push_back(node);
    out.smoother.collect(node, groups);
}

void buildRandom(RandomScene& out, std::uint32_t seed) {
    std::mt19937 rng(seed);
    auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); };
    MaterialRef material = makeMaterial("m");
    Ptr<Node> top = out.scene.root->rootNode();
    Ptr<ArgAnimationNode> moving = makeTreeNode<ArgAnimationNode>(top, "moving");
    const int nodeCount = 2 + below(9);
    const bool large = seed % 10 == 0;
    const std::uint32_t groupChoices[] = {0, 1, 2, 3, 4, 1, 1};
    for (int i = 0; i < nodeCount; ++i) {
        Ptr<Node> parent = below(5) == 0 ? Ptr<Node>(moving) : top;
        // A small move, a quarter turn with a move, an uneven scale, or nothing.
        const int kind = below(4);
        nq::Matrixd m = kind == 0   ? translation(0.0005 * below(3), 0, -0.0005 * below(3))
                        : kind == 1 ? kTurnAndMove
                        : kind == 2 ? nq::scaleMatrix(nq::Vec3d{{2, 2, 3}})
                                    : nq::Matrixd();
        if (!m.isIdentity(0.0)) {
            Ptr<TransformNode> t = makeTreeNode<TransformNode>(parent);
            t->matrix = m;
            parent = t;
        }
        const int count = 1 + below(large ? 300 : 25);
        std::vector<Point> points;
        std::vector<std::uint32_t> groups;
        for (int v = 0; v < count; ++v) {
            points.push_back(
                {0.0005f * below(8), 0.0005f * below(large ? 40 : 5), below(4) == 0 ? 0.0011f : 0.0f});
            groups.push_back(groupChoices[below(7)]);
        }
        if (below(10) == 0) {
            points[0][1] = std::numeric_limits<float>::quiet_NaN();
        }
        // Now and then a node far out, where the search clamps its cells and corners far apart
        // share one.
        if (below(15) == 0) {
            const float far = below(2) == 0 ? 3e9f : 5e9f;
            for (Point& p : points) {
                p[0] += far;
            }
        }
        addCollected(out, parent, material, i, points, groups, below);
    }
}

TEST(NormalSmootherDifferential, IndexedSearchMatchesThePlainWalk) {
    std::size_t clustersSeen = 0;
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        RandomScene fast;
        RandomScene plain;
        buildRandom(fast, seed);
        buildRandom(plain, seed);
        fast.smoother.gather();
        plain.smoother.gather();
        std::vector<SmoothCluster> reference = smoothtest::referenceClusters(plain.smoother.nodes());
        ASSERT_EQ(fast.smoother.clusters(), reference);
        clustersSeen += reference.size();
        fast.smoother.apply();
        applySmoothClusters(plain.smoother.nodes(), reference);
        for (std::size_t i = 0; i < fast.nodes.size(); ++i) {
            const auto& x = fast.nodes[i]->vertices.attribute(NORMAL0).data;
            const auto& y = plain.nodes[i]->vertices.attribute(NORMAL0).data;
            ASSERT_EQ(x.size(), y.size());
            EXPECT_EQ(std::memcmp(x.data(), y.data(), x.size() * sizeof(float)), 0) << "node " << i;
        }
        EXPECT_EQ(fast.smoother.zeroNormalNodes(), plain.smoother.zeroNormalNodes());
    }
    // The scenes are dense enough to exercise the cluster search.
    EXPECT_GT(clustersSeen, 3000u) << clustersSeen;
}

// The tree passes run between collect and gather in an export: they bake static transforms into
// the vertices (normals by the inverse transpose) and hang the nodes higher up. Smoothing after
// them must give the normals that smoothing before them gives once those are baked in turn.
void buildBaked(RandomScene& out, std::uint32_t seed) {
    std::mt19937 rng(seed);
    auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); };
    MaterialRef material = makeMaterial("m");
    Ptr<Node> top = out.scene.root->rootNode();
    // A quarter turn about z, two uneven scales (one a mirror), a move, and a turn about y.
    const nq::Matrixd picks[] = {matrixOf({0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}),
                                 nq::scaleMatrix(nq::Vec3d{{1, 2, 0.5}}),
                                 nq::scaleMatrix(nq::Vec3d{{-1, 1, 1}}), translation(3, -1, 2),
                                 matrixOf({0.6, 0, -0.8, 0, 0, 1, 0, 0, 0.8, 0, 0.6, 0, 0, 0, 0, 1})};
    auto pick = [&] { return picks[below(5)]; };
    const int nodeCount = 2 + below(6);
    for (int i = 0; i < nodeCount; ++i) {
        Ptr<Node> parent = top;
        for (int depth = below(3); depth > 0; --depth) {
            Ptr<TransformNode> t = makeTreeNode<TransformNode>(parent);
            t->matrix = pick();
            parent = t;
        }
        nq::Matrixd world;
        parent->worldTransform(DummyArguments(), world);
        const nq::Matrixd toLocal = world.inverse();
        // Corners on a coarse world lattice, so that nodes share many of them.
        std::vector<Point> points;
        std::vector<std::uint32_t> groups;
        for (int v = 0, count = 3 + below(12); v < count; ++v) {
            nq::Vec3d local = toLocal.transformPoint(nq::Vec3d{{double(below(3)), double(below(3)), 0.0}});
            points.push_back({float(local[0]), float(local[1]), float(local[2])});
            groups.push_back(1u + static_cast<std::uint32_t>(below(2)));
        }
        addCollected(out, parent, material, i, points, groups, below);
    }
}

TEST(NormalSmootherAndOptimisers, SmoothingAfterTheBakeMatchesSmoothingBeforeIt) {
    std::size_t moved = 0;
    std::size_t clusters = 0;
    for (std::uint32_t seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        RandomScene after;
        RandomScene before;
        buildBaked(after, seed);
        buildBaked(before, seed);
        std::vector<Node*> linksBefore;
        for (const auto& n : after.nodes) {
            linksBefore.push_back(n->link(0).get());
        }

        optimizeTransformations(after.scene.root.get());
        after.smoother.gather();
        after.smoother.apply();

        before.smoother.gather();
        before.smoother.apply();
        optimizeTransformations(before.scene.root.get());

        ASSERT_EQ(after.smoother.clusters(), before.smoother.clusters());
        clusters += after.smoother.clusters().size();
        for (std::size_t i = 0; i < after.nodes.size(); ++i) {
            moved += after.nodes[i]->link(0).get() != linksBefore[i];
            const auto& x = after.nodes[i]->vertices.attribute(NORMAL0).data;
            const auto& y = before.nodes[i]->vertices.attribute(NORMAL0).data;
            ASSERT_EQ(x.size(), y.size());
            for (std::size_t k = 0; k < x.size(); ++k) {
                EXPECT_NEAR(x[k], y[k], 1e-5) << "node " << i << " float " << k;
            }
        }
    }
    // The optimisers did move nodes, and the scenes did smooth.
    EXPECT_GT(moved, 60u);
    EXPECT_GT(clusters, 100u);
}

}  // namespace
