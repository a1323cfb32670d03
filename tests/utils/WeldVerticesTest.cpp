#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "model/utils/WeldVertices.h"
#include "utils/MergeTestSupport.h"
#include "utils/ReferenceMerging.h"

namespace {

using namespace model;
using namespace model::utils;
using mergetest::taggedPositions;

// Equality of layout and of every float's bits, so that not-a-number values compare too.
bool sameBits(const Vertices& a, const Vertices& b) {
    std::vector<float> x = a.interleaved();
    std::vector<float> y = b.interleaved();
    // memcmp must not see the null data of empty arrays.
    return a.format() == b.format() && x.size() == y.size() &&
           (x.empty() || std::memcmp(x.data(), y.data(), x.size() * sizeof(float)) == 0);
}

std::vector<float> xs(const Vertices& v) {
    std::vector<float> out;
    const auto& data = v.attribute(POSITION0).data;
    for (std::size_t i = 0; i < data.size(); i += 4) {
        out.push_back(data[i]);
    }
    return out;
}

// Each case: the vertices (x, y, z and the parent tag), the primitive and indices, how many
// vertices go, the indices after, and the x of the survivors (left out where one is not a number).
struct WeldCase {
    const char* name;
    std::vector<std::array<float, 4>> points;
    std::uint32_t primitive;
    std::vector<std::uint32_t> indices;
    std::size_t removed;
    std::vector<std::uint32_t> after;
    std::vector<float> survivorXs;
};

TEST(WeldVertices, WeldsWithinTheToleranceOnlyWhereTheTagAndFinitenessAllow) {
    EXPECT_EQ(std::bit_cast<std::uint32_t>(kWeldTolerance), 0x3727C5ACu);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const WeldCase cases[] = {
        {"the tolerance is inclusive and survivors keep their values",
         {{0, 0, 0, 0}, {1e-5f, 0, 0, 0}, {5, 0, 0, 0}, {5 + 2e-5f, 0, 0, 0}},
         kTriangleList,
         {0, 1, 2, 3, 2, 1},
         1,
         {0, 0, 1, 2, 1, 0},
         {0, 5, 5 + 2e-5f}},
        // Same place, different parents; and +0 against -0, which are equal as numbers.
        {"the fourth float must match bit for bit",
         {{1, 2, 3, 0}, {1, 2, 3, 1}, {1, 2, 3, -0.0f}, {1, 2, 3, 0}},
         kPoints,
         {0, 1, 2, 3},
         1,
         {0, 1, 2, 0},
         {1, 1, 1}},
        // b is within reach of a and of c, c is not within reach of a: a takes b, c stays.
        {"matches of matches are not chained",
         {{0, 0, 0, 0}, {0.8e-5f, 0, 0, 0}, {1.6e-5f, 0, 0, 0}},
         kPoints,
         {2, 1, 0},
         1,
         {1, 0, 0},
         {0, 1.6e-5f}},
        {"unused vertices go first and count",
         {{9, 0, 0, 0}, {1, 0, 0, 0}, {8, 0, 0, 0}, {1, 0, 0, 0}, {2, 0, 0, 0}},
         kTriangleList,
         {1, 3, 4},
         3,
         {0, 0, 1},
         {1, 2}},
        // A not-a-number tag is compared by its bits, so the last two weld.
        {"floats that are not finite never weld",
         {{nan, 0, 0, 0}, {nan, 0, 0, 0}, {inf, 0, 0, 0}, {inf, 0, 0, 0}, {0, 0, 0, nan}, {0, 0, 0, nan}},
         kPoints,
         {0, 1, 2, 3, 4, 5},
         1,
         {0, 1, 2, 3, 4, 4},
         {}},
    };
    for (const WeldCase& c : cases) {
        SCOPED_TRACE(c.name);
        Vertices v = taggedPositions(c.points);
        Indices i(c.primitive, c.indices);
        EXPECT_EQ(weldVertices(v, i, kWeldTolerance), c.removed);
        EXPECT_EQ(i.indices, c.after);
        if (!c.survivorXs.empty()) {
            EXPECT_EQ(xs(v), c.survivorXs);
        }
    }
    Vertices lone = taggedPositions({{1, 0, 0, 0}, {2, 0, 0, 0}});
    Indices none(kTriangleList, {});
    EXPECT_EQ(removeUnusedVertices(lone, none), 2u);
    EXPECT_EQ(lone.vertexCount(), 0u);
}

TEST(WeldVertices, BrokenMeshesFailWithAClearMessage) {
    Vertices v = taggedPositions({{0, 0, 0, 0}});
    Indices i(kPoints, {0, 1});
    EXPECT_EQ(mergetest::failureOf([&] { weldVertices(v, i, kWeldTolerance, "wheel"); }),
              "Index 1 is past the end of the 1 vertices of node 'wheel'.");
    v.setAttribute(NORMAL0, 3, {0, 1});
    Indices ok(kPoints, {0});
    EXPECT_EQ(mergetest::failureOf([&] { weldVertices(v, ok, kWeldTolerance); }), "Wrong vertex size.");
}

// Random meshes with clusters at about the tolerance, exact duplicates, signed zeros, tags and odd
// strides: the sorted sweep of small meshes and the k-d tree of those above 128 vertices find
// exactly the matches that the search over all vertices finds.
TEST(WeldVertices, BothSearchesWeldExactlyAsTheFullSearchDoes) {
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        auto below = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(random); };
        int count = 1 + below(400);
        int extra = below(4);  // floats after the position: 0 gives a stride of 4
        std::vector<float> positionsData;
        std::vector<float> extraData;
        float step = std::array<float, 3>{0.4e-5f, 1e-5f, 0.25f}[static_cast<std::size_t>(below(3))];
        for (int k = 0; k < count; ++k) {
            for (int c = 0; c < 3; ++c) {
                // Both signs, and zeros of both signs, which weld with each other.
                float x = step * static_cast<float>(below(7) - 3);
                positionsData.push_back(x == 0 && below(2) == 0 ? -0.0f : x);
            }
            positionsData.push_back(static_cast<float>(below(2)));
            for (int c = 0; c < extra; ++c) {
                extraData.push_back(below(8) == 0 ? std::numeric_limits<float>::quiet_NaN()
                                                  : step * below(3));
            }
        }
        Vertices a;
        a.setAttribute(POSITION0, 4, positionsData);
        if (extra > 0) {
            a.setAttribute(TEXCOORD0, extra, extraData);
        }
        std::vector<std::uint32_t> indices;
        for (int k = below(3 * count); k > 0; --k) {
            indices.push_back(static_cast<std::uint32_t>(below(count)));
        }
        Vertices b = a;
        Indices ia(kTriangleList, indices);
        Indices ib = ia;
        EXPECT_EQ(weldVertices(a, ia, kWeldTolerance), reference::weldVertices(b, ib, kWeldTolerance));
        EXPECT_TRUE(sameBits(a, b));
        EXPECT_EQ(ia, ib);
        // A welded mesh welds to itself: the export's passes weld the render nodes only once.
        EXPECT_EQ(weldVertices(a, ia, kWeldTolerance), 0u);
        EXPECT_TRUE(sameBits(a, b));
        EXPECT_EQ(ia, ib);
    }
}

}  // namespace
