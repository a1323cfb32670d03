#include <gtest/gtest.h>

#include <random>

#include <meshoptimizer.h>

#include "model/ShellSkinNode.h"
#include "model/utils/RemapDuplicates.h"
#include "model/utils/VertexWorkers.h"
#include "model/utils/WeldVertices.h"
#include "utils/MergeTestSupport.h"

namespace {

using namespace model;
using namespace model::utils;

Vertices line(const std::vector<float>& xs) {
    Vertices v;
    std::vector<float> data;
    for (float x : xs) {
        data.insert(data.end(), {x, 0, 0});
    }
    v.setAttribute(POSITION0, 3, data);
    return v;
}

TEST(RemapDuplicates, KeepsTheFirstInIndexOrderAndComparesBytes) {
    // 0.0 and -0.0 are different bytes and stay apart; 2 and 2 are one vertex.
    Vertices v = line({0.0f, 2, -0.0f, 2, 7});
    Indices i(kTriangleList, {3, 1, 0, 2, 0, 3});
    EXPECT_EQ(remapDuplicateVertices(v, i), 2u);  // one duplicate, one unused
    EXPECT_EQ(v.attribute(POSITION0).data, (std::vector<float>{2, 0, 0, 0.0f, 0, 0, -0.0f, 0, 0}));
    EXPECT_EQ(std::signbit(v.attribute(POSITION0).data[6]), true);
    EXPECT_EQ(i.indices, (std::vector<std::uint32_t>{0, 0, 1, 2, 1, 0}));
}

TEST(RemapDuplicates, ChangesNothingUnlessTheCountFalls) {
    // No duplicates: the vertices stay in their order although the indices name them backwards.
    Vertices v = line({1, 2, 3});
    Indices i(kTriangleList, {2, 1, 0});
    EXPECT_EQ(remapDuplicateVertices(v, i), 0u);
    EXPECT_EQ(v.attribute(POSITION0).data[0], 1.0f);
    EXPECT_EQ(i.indices, (std::vector<std::uint32_t>{2, 1, 0}));

    Indices none(kTriangleList, {});
    EXPECT_EQ(remapDuplicateVertices(v, none), 3u);
    EXPECT_EQ(v.vertexCount(), 0u);
}

// Meshes with many duplicates: the byte-wise remap of our own gives meshoptimizer's table, and the
// pass gives the same result for vertices too long for meshoptimizer.
TEST(RemapDuplicates, OwnRemapTableEqualsTheLibrarysAndLongVerticesWork) {
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
        std::size_t count = 1 + static_cast<std::size_t>(below(100));
        std::size_t stride = 3 + static_cast<std::size_t>(below(3));
        std::vector<float> data;
        for (std::size_t k = 0; k < count * stride; ++k) {
            data.push_back(static_cast<float>(below(2)));
        }
        std::vector<std::uint32_t> indices;
        for (int k = 3 * (1 + below(70)); k > 0; --k) {
            indices.push_back(static_cast<std::uint32_t>(below(static_cast<int>(count))));
        }
        std::vector<std::uint32_t> ours(count), theirs(count);
        std::size_t size = stride * sizeof(float);
        EXPECT_EQ(
            generateVertexRemapBytes(ours.data(), indices.data(), indices.size(), data.data(), count, size),
            meshopt_generateVertexRemap(theirs.data(), indices.data(), indices.size(), data.data(), count,
                                        size));
        EXPECT_EQ(ours, theirs);

        // The same mesh with 64 more floats per vertex, all zero, takes the path of our own, and so
        // does a list of lines.
        Vertices shortOnes(data, count, [&] {
            VertexFormat f;
            f[POSITION0] = static_cast<std::uint8_t>(stride);
            return f;
        }());
        Vertices longOnes = shortOnes;
        longOnes.setAttribute(COLOR0, 64, std::vector<float>(count * 64, 0.0f));
        Indices a(kTriangleList, indices);
        Indices b = a;
        EXPECT_EQ(remapDuplicateVertices(shortOnes, a), remapDuplicateVertices(longOnes, b));
        EXPECT_EQ(a, b);
        EXPECT_EQ(shortOnes.attribute(POSITION0), longOnes.attribute(POSITION0));
        Vertices lines(data, count, shortOnes.format());
        Indices c(kLineList, indices);
        c.indices.pop_back();
        Indices d = c;
        Vertices linesLong = lines;
        linesLong.setAttribute(COLOR0, 64, std::vector<float>(count * 64, 0.0f));
        EXPECT_EQ(remapDuplicateVertices(lines, c), remapDuplicateVertices(linesLong, d));
        EXPECT_EQ(c, d);
    }
}

TEST(VertexWorkers, WorkersTakeTheirKindsAndSumTheirCounts) {
    mergetest::Scene s = mergetest::makeScene();
    Ptr<Node> top = s.root->rootNode();
    MaterialPtr m = mergetest::makeMaterial("m");
    // Render node: one byte-equal duplicate and one near duplicate.
    Ptr<RenderNode> r = mergetest::makeTriangle(top, m);
    r->vertices = mergetest::meshVertices({{0, 0, 0}, {0, 0, 0}, {1e-6f, 0, 0}, {1, 0, 0}});
    r->indices = Indices(kTriangleList, {0, 1, 3, 2, 3, 0});
    s.root->addRenderNode(r);
    // Shells: a plain one with a duplicate, a skinned one that no worker takes, an empty one.
    Ptr<ShellNode> shell = createNodeAs<ShellNode>("model::ShellNode");
    shell->controlNode = top;
    shell->vertices = [] {
        Vertices v;
        v.setAttribute(POSITION0, 3, {0, 0, 0, 0, 0, 0, 1, 0, 0});
        return v;
    }();
    shell->indices = Indices(kTriangleList, {0, 1, 2});
    Ptr<ShellSkinNode> skinShell = createNodeAs<ShellSkinNode>("model::ShellSkinNode");
    skinShell->vertices = shell->vertices;
    skinShell->indices = shell->indices;
    Ptr<ShellNode> empty = createNodeAs<ShellNode>("model::ShellNode");
    s.root->addShellNode(shell);
    s.root->addShellNode(skinShell);
    s.root->addShellNode(empty);

    Ptr<RenderNode> copy = mergetest::makeTriangle(top, m);
    copy->vertices = r->vertices;
    copy->indices = r->indices;
    mergetest::Scene other = mergetest::makeScene();
    other.root->addRenderNode(copy);
    EXPECT_EQ(remapOptimize(*other.root), (RemovedCounts{1, 0}));  // only the byte-equal pair
    EXPECT_EQ(copy->vertices.vertexCount(), 3u);

    EXPECT_EQ(extremeOptimize(*s.root, kWeldTolerance), (RemovedCounts{3, 0}));
    EXPECT_EQ(r->vertices.vertexCount(), 2u);
    EXPECT_EQ(shell->vertices.vertexCount(), 2u);
    EXPECT_EQ(skinShell->vertices.vertexCount(), 3u);
    ASSERT_EQ(s.root->shellNodes().size(), 2u);  // the empty shell is gone
    EXPECT_EQ(empty->root, nullptr);
}

}  // namespace
