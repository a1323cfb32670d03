// Render normals built from smoothing groups, as the exporter reads them corner by corner.

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <optional>
#include <random>
#include <vector>

#include "host/Mesh.h"

namespace {

using host::Point3;

// A unit cube of 12 triangles wound outwards; side k has smoothing group groups[k].
host::Mesh cube(const std::array<host::DWORD, 6>& groups) {
    host::Mesh mesh;
    mesh.verts = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {1, 1, 1}};
    const std::array<std::array<host::DWORD, 4>, 6> sides{
        {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {1, 3, 7, 5}, {3, 2, 6, 7}, {2, 0, 4, 6}}};
    for (std::size_t s = 0; s < 6; ++s) {
        const auto& q = sides[s];
        host::Face a, b;
        a.v[0] = q[0], a.v[1] = q[1], a.v[2] = q[2];
        b.v[0] = q[2], b.v[1] = q[3], b.v[2] = q[0];
        a.smGroup = b.smGroup = groups[s];
        mesh.faces.push_back(a);
        mesh.faces.push_back(b);
    }
    return mesh;
}

void expectNear(const Point3& a, const Point3& b) {
    EXPECT_NEAR(a.x, b.x, 1e-5f);
    EXPECT_NEAR(a.y, b.y, 1e-5f);
    EXPECT_NEAR(a.z, b.z, 1e-5f);
}

TEST(MeshRenderNormals, SeparateGroupsGiveOneNormalPerSideAtEachCorner) {
    host::Mesh mesh = cube({1, 2, 4, 8, 16, 32});
    mesh.buildRenderNormals();
    // Vertex 0 touches bottom, front and left.
    const host::RVertex& rv = *mesh.getRVertPtr(0);
    ASSERT_EQ(rv.rFlags & host::NORCT_MASK, 3u);
    ASSERT_EQ(rv.ern.size(), 3u);
    expectNear(rv.ern[0].normal, {0, 0, -1});
    EXPECT_EQ(rv.ern[0].smGroup, 1u);
    expectNear(rv.ern[1].normal, {0, -1, 0});
    expectNear(rv.ern[2].normal, {-1, 0, 0});
    expectNear(mesh.getFaceNormal(2), {0, 0, 1});
}

TEST(MeshRenderNormals, OneGroupAveragesTheSidesByCornerAngle) {
    host::Mesh mesh = cube({1, 1, 1, 1, 1, 1});
    mesh.buildRenderNormals();
    // Two triangles of a side meet at some corners and not at others; weighting by the angle
    // gives every side the same share anyway, so the corner normal is the exact diagonal.
    const float d = 1.0f / std::sqrt(3.0f);
    for (int v : {0, 3, 7}) {
        const host::RVertex& rv = *mesh.getRVertPtr(v);
        ASSERT_EQ(rv.rFlags, 1u);
        const Point3 expected = v == 0 ? Point3(-d, -d, -d) : v == 3 ? Point3(d, d, -d) : Point3(d, d, d);
        expectNear(rv.rn.normal, expected);
        EXPECT_EQ(rv.rn.smGroup, 1u);
    }
}

TEST(MeshRenderNormals, GroupsJoinThroughAFaceThatSharesBitsWithBoth) {
    // Three faces around vertex 0: groups 1, 2, then 3, which bridges the first two. Whatever the
    // order, the vertex ends with one normal carrying all three bits.
    for (const std::array<host::DWORD, 3>& order :
         {std::array<host::DWORD, 3>{1, 2, 3}, std::array<host::DWORD, 3>{3, 1, 2}}) {
        host::Mesh mesh;
        mesh.verts = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-1, 0, 0}};
        for (std::size_t i = 0; i < 3; ++i) {
            host::Face f;
            f.v[0] = 0;
            f.v[1] = static_cast<host::DWORD>(i + 1);
            f.v[2] = static_cast<host::DWORD>((i + 1) % 3 + 1);
            f.smGroup = order[i];
            mesh.faces.push_back(f);
        }
        mesh.buildRenderNormals();
        const host::RVertex& rv = *mesh.getRVertPtr(0);
        ASSERT_EQ(rv.rFlags & host::NORCT_MASK, 1u);
        EXPECT_EQ(rv.rn.smGroup, 3u);
    }
}

TEST(MeshRenderNormals, SpecifiedUngroupedAndDegenerate) {
    host::Mesh mesh;
    mesh.verts = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {2, 0, 0}};
    host::Face plain, flat;
    plain.v[0] = 0, plain.v[1] = 1, plain.v[2] = 2;
    flat.v[0] = 0, flat.v[1] = 1, flat.v[2] = 3;
    flat.smGroup = 1;
    mesh.faces = {plain, flat};
    mesh.setSpecifiedNormal(1, {0, 0, -1});
    mesh.buildRenderNormals();
    // A face without a smoothing group adds nothing to its vertices.
    EXPECT_EQ(mesh.getRVertPtr(2)->rFlags, 0u);
    // A specified normal stands alone, marked.
    EXPECT_EQ(mesh.getRVertPtr(1)->rFlags, host::SPECIFIED_NORMAL | 1);
    EXPECT_EQ(mesh.getRVertPtr(1)->rn.normal, Point3(0, 0, -1));
    // A face without area has the zero normal, and a smoothed vertex of it only a zero one.
    EXPECT_EQ(mesh.getFaceNormal(1), Point3());
    EXPECT_EQ(mesh.getRVertPtr(3)->rn.normal, Point3());
    expectNear(mesh.getFaceNormal(0), {0, 0, 1});
    expectNear(mesh.FaceCenter(0), {1.0f / 3, 1.0f / 3, 0});
}

// One smoothing group over random triangles and a grid: each vertex normal is, bit for bit, the
// plain sum in face order of the unit face normals times the arc cosine of the corner's cosine,
// normalised. The random triangles give thousands of different angles, the grid the same few,
// and its rows alternate between 0 and -0 in z, which gives cosines of either zero.
TEST(MeshRenderNormals, AngleWeightsAgreeBitForBitWithThePlainSum) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> coordinate(-2.0f, 2.0f);
    host::Mesh mesh;
    for (int i = 0; i < 300; ++i) {
        mesh.verts.emplace_back(coordinate(random), coordinate(random), coordinate(random));
    }
    for (host::DWORD y = 0; y < 8; ++y) {
        for (host::DWORD x = 0; x < 8; ++x) {
            mesh.verts.emplace_back(static_cast<float>(x) * 0.125f, static_cast<float>(y) * 0.125f,
                                    y % 2 ? -0.0f : 0.0f);
        }
    }
    auto addFace = [&](host::DWORD a, host::DWORD b, host::DWORD c) {
        host::Face f;
        f.v[0] = a, f.v[1] = b, f.v[2] = c;
        f.smGroup = 1;
        mesh.faces.push_back(f);
    };
    for (int i = 0; i < 2000; ++i) {
        addFace(random() % 300, random() % 300, random() % 300);
    }
    for (host::DWORD y = 0; y < 7; ++y) {
        for (host::DWORD x = 0; x < 7; ++x) {
            const host::DWORD v = 300 + y * 8 + x;
            addFace(v, v + 1, v + 9);
            addFace(v, v + 9, v + 8);
        }
    }
    mesh.buildRenderNormals();

    auto unit = [](const Point3& p) {
        const float len = std::sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
        return len > 0.0f ? p * (1.0f / len) : Point3();
    };
    std::vector<std::optional<Point3>> sums(mesh.verts.size());
    for (const host::Face& f : mesh.faces) {
        const Point3 p[3] = {mesh.verts[f.v[0]], mesh.verts[f.v[1]], mesh.verts[f.v[2]]};
        const Point3 e = p[1] - p[0], g = p[2] - p[1];
        const Point3 faceNormal = unit({e.y * g.z - e.z * g.y, e.z * g.x - e.x * g.z, e.x * g.y - e.y * g.x});
        for (int k = 0; k < 3; ++k) {
            const Point3 a = unit(p[(k + 1) % 3] - p[k]), b = unit(p[(k + 2) % 3] - p[k]);
            const float c = std::clamp(a.x * b.x + a.y * b.y + a.z * b.z, -1.0f, 1.0f);
            const Point3 weighted = faceNormal * std::acos(c);
            auto& sum = sums[f.v[k]];
            sum = sum ? *sum + weighted : weighted;
        }
    }
    auto bits = [](const Point3& p) {
        return std::array<std::uint32_t, 3>{std::bit_cast<std::uint32_t>(p.x),
                                            std::bit_cast<std::uint32_t>(p.y),
                                            std::bit_cast<std::uint32_t>(p.z)};
    };
    for (std::size_t v = 0; v < mesh.verts.size(); ++v) {
        const host::RVertex& rv = *mesh.getRVertPtr(static_cast<int>(v));
        ASSERT_EQ(rv.rFlags, sums[v] ? 1u : 0u) << v;
        if (sums[v]) {
            EXPECT_EQ(bits(rv.rn.normal), bits(unit(*sums[v]))) << v;
        }
    }
}

}  // namespace
