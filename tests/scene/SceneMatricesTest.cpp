// The matrices the headless host computes from the hierarchy: the world matrix is the local
// matrix times the parent's world matrix (row vectors, translation in the last row), and the
// object matrix is the object offset times the world matrix.

#include <gtest/gtest.h>

#include "scene/SceneLoader.h"

namespace {

void expectNear(const host::Point3& actual, const host::Point3& expected) {
    EXPECT_NEAR(actual.x, expected.x, 1e-5f);
    EXPECT_NEAR(actual.y, expected.y, 1e-5f);
    EXPECT_NEAR(actual.z, expected.z, 1e-5f);
}

void expectNear(const host::Matrix3& actual, const host::Matrix3& expected) {
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        expectNear(actual.GetRow(i), expected.GetRow(i));
    }
}

// A parent turned 90 degrees about z and moved by (10, 0, 0); its child moved by (1, 0, 0)
// in the parent's space and scaled by 2; the grandchild moved by (0, 0, 3) and given an object
// offset of (0, 0, 2).
constexpr const char* hierarchy = R"({"nodes": [{
    "name": "parent",
    "localTM": [[0, 1, 0], [-1, 0, 0], [0, 0, 1], [10, 0, 0]],
    "children": [{
        "name": "child",
        "localTM": [[2, 0, 0, 0], [0, 2, 0, 0], [0, 0, 2, 0], [1, 0, 0, 1]],
        "children": [{
            "name": "grandchild",
            "localTM": [[1, 0, 0], [0, 1, 0], [0, 0, 1], [0, 0, 3]],
            "objectOffsetTM": [[1, 0, 0], [0, 1, 0], [0, 0, 1], [0, 0, 2]]
        }]
    }]
}]})";

TEST(SceneMatrices, WorldMatricesComposeDownTheHierarchy) {
    auto scene = scene::parseScene(hierarchy);
    host::INode* parent = scene->root.GetChildNode(0);
    host::INode* child = parent->GetChildNode(0);
    host::INode* grandchild = child->GetChildNode(0);

    EXPECT_TRUE(scene->root.GetNodeTM(0).IsIdentity());
    EXPECT_TRUE(parent->GetParentTM(0).IsIdentity());
    expectNear(parent->GetNodeTM(0), host::Matrix3({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {10, 0, 0}));

    // The child's x axis, scaled, turns into the parent's y; its origin lands at (10, 1, 0).
    host::Matrix3 childTM = child->GetNodeTM(0);
    expectNear(childTM, host::Matrix3({0, 2, 0}, {-2, 0, 0}, {0, 0, 2}, {10, 1, 0}));
    EXPECT_EQ(child->GetParentTM(0), parent->GetNodeTM(0));

    // The grandchild's (0, 0, 3) is scaled by the child: (10, 1, 6).
    expectNear(grandchild->GetNodeTM(0).GetTrans(), {10, 1, 6});
    expectNear(grandchild->GetObjectTM(0).GetTrans(), {10, 1, 10});
    EXPECT_EQ(grandchild->GetObjTMBeforeWSM(0), grandchild->GetObjectTM(0));
    EXPECT_EQ(grandchild->GetObjTMAfterWSM(0), grandchild->GetObjectTM(0));
    // Without an offset the object matrix is the node matrix.
    EXPECT_EQ(child->GetObjectTM(0), child->GetNodeTM(0));

    // The local matrix comes back as node matrix times the inverse of the parent matrix.
    expectNear(child->GetNodeTM(0) * host::Inverse(child->GetParentTM(0)),
               host::Matrix3({2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {1, 0, 0}));
}

TEST(SceneMatrices, PointsFollowTheWorldMatrix) {
    auto scene = scene::parseScene(hierarchy);
    host::INode* grandchild = scene->root.GetChildNode(0)->GetChildNode(0)->GetChildNode(0);
    // A point one unit along the grandchild's x: doubled by the child, turned onto y.
    expectNear(host::Point3(1, 0, 0) * grandchild->GetNodeTM(0), {10, 3, 6});
    expectNear(host::VectorTransform(grandchild->GetNodeTM(0), {1, 0, 0}), {0, 2, 0});
}

}  // namespace
