#pragma once
// The host's geometric value types, in single precision as the host keeps them. A Matrix3 is an
// affine matrix of four rows of three: rows 0 to 2 are the axes, row 3 the translation. Points
// are row vectors multiplied from the left (p * M), so a child's world matrix is its local
// matrix times its parent's world matrix.

#include <array>

#include "core/Math.h"

namespace host {

struct Point3 {
    float x = 0, y = 0, z = 0;

    constexpr Point3() = default;
    constexpr Point3(float px, float py, float pz) : x(px), y(py), z(pz) {}

    float& operator[](int i) { return i == 0 ? x : i == 1 ? y : z; }
    float operator[](int i) const { return i == 0 ? x : i == 1 ? y : z; }
    Point3 operator+(const Point3& o) const { return {x + o.x, y + o.y, z + o.z}; }
    Point3 operator-(const Point3& o) const { return {x - o.x, y - o.y, z - o.z}; }
    Point3 operator*(float s) const { return {x * s, y * s, z * s}; }
    bool operator==(const Point3&) const = default;
};

// An axis-aligned box given by its two corners.
struct Box3 {
    Point3 pmin;
    Point3 pmax;
    bool operator==(const Box3&) const = default;
};

class Matrix3 {
public:
    // The identity.
    Matrix3() = default;
    Matrix3(const Point3& row0, const Point3& row1, const Point3& row2, const Point3& row3)
        : rows_{row0, row1, row2, row3} {}

    const Point3& GetRow(int i) const { return rows_[i]; }
    void SetRow(int i, const Point3& row) { rows_[i] = row; }
    const Point3& GetTrans() const { return rows_[3]; }
    void SetTrans(const Point3& t) { rows_[3] = t; }
    void IdentityMatrix() { *this = Matrix3(); }
    bool IsIdentity() const { return *this == Matrix3(); }

    // This matrix applied first, then o.
    Matrix3 operator*(const Matrix3& o) const;
    Matrix3& operator*=(const Matrix3& o) { return *this = *this * o; }
    bool operator==(const Matrix3&) const = default;

private:
    std::array<Point3, 4> rows_{Point3(1, 0, 0), Point3(0, 1, 0), Point3(0, 0, 1), Point3(0, 0, 0)};
};

// p * M: the point with the translation applied.
Point3 operator*(const Point3& p, const Matrix3& m);
// The direction v * M without the translation.
Point3 VectorTransform(const Matrix3& m, const Point3& v);
// The inverse of an affine matrix; a singular matrix gives the identity.
Matrix3 Inverse(const Matrix3& m);

// The same matrix as a 4 by 4 of doubles, fourth column (0, 0, 0, 1).
nq::Matrixd toMatrixd(const Matrix3& m);

}  // namespace host
