// The host's affine matrices: composition order and the inverse.

#include <gtest/gtest.h>

#include "host/Matrix3.h"

namespace {

using host::Matrix3;
using host::Point3;

TEST(Matrix3, ComposesLeftMatrixFirst) {
    Matrix3 move({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {5, 0, 0});
    Matrix3 turn({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, 0});  // 90 degrees about z
    Point3 p(1, 0, 0);
    // Moved, then turned: (6, 0, 0) turns to (0, 6, 0).
    EXPECT_EQ(p * (move * turn), Point3(0, 6, 0));
    // Turned, then moved: (0, 1, 0) moves to (5, 1, 0).
    EXPECT_EQ(p * (turn * move), Point3(5, 1, 0));
    EXPECT_EQ(host::VectorTransform(move * turn, p), Point3(0, 1, 0));
}

TEST(Matrix3, InverseUndoesAnAffineMatrix) {
    Matrix3 m({0, 2, 0}, {-3, 0, 0}, {0.5f, 0, 4}, {7, -2, 1});
    Matrix3 product = m * host::Inverse(m);
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j) {
            EXPECT_NEAR(product.GetRow(i)[j], Matrix3().GetRow(i)[j], 1e-6f) << i << "," << j;
        }
    }
    Point3 p(1, 2, 3);
    Point3 back = (p * m) * host::Inverse(m);
    EXPECT_NEAR(back.x, 1, 1e-5f);
    EXPECT_NEAR(back.y, 2, 1e-5f);
    EXPECT_NEAR(back.z, 3, 1e-5f);
}

TEST(Matrix3, SingularInverseIsIdentity) {
    Matrix3 flat({1, 0, 0}, {0, 1, 0}, {0, 0, 0}, {1, 2, 3});
    EXPECT_TRUE(host::Inverse(flat).IsIdentity());
}

TEST(Matrix3, WidensToDoubleRowForRow) {
    Matrix3 m({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12});
    nq::Matrixd d = host::toMatrixd(m);
    EXPECT_EQ(d(1, 2), 6.0);
    EXPECT_EQ(d(3, 0), 10.0);
    EXPECT_EQ(d(0, 3), 0.0);
    EXPECT_EQ(d(3, 3), 1.0);
}

}  // namespace
