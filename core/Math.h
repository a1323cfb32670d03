#pragma once
// Plain value types of the model. Matrices use the row-vector convention: a point p maps to
// p x M, the translation stands in the last row (elements 12, 13, 14), and a child's matrix
// composes with its parent's as L x M.

#include <array>
#include <cmath>

namespace osg {

// Float vectors, named so because their names appear in class-name literals of the file.
struct Vec2f {
    float v[2] = {0, 0};
    float& operator[](int i) { return v[i]; }
    float operator[](int i) const { return v[i]; }
    bool operator==(const Vec2f&) const = default;
};
struct Vec3f {
    float v[3] = {0, 0, 0};
    float& operator[](int i) { return v[i]; }
    float operator[](int i) const { return v[i]; }
    bool operator==(const Vec3f&) const = default;
};
struct Vec4f {
    float v[4] = {0, 0, 0, 0};
    float& operator[](int i) { return v[i]; }
    float operator[](int i) const { return v[i]; }
    bool operator==(const Vec4f&) const = default;
};

}  // namespace osg

namespace nq {

struct Vec3d {
    double v[3] = {0, 0, 0};
    double& operator[](int i) { return v[i]; }
    double operator[](int i) const { return v[i]; }
    bool operator==(const Vec3d&) const = default;
};
struct Vec4d {
    double v[4] = {0, 0, 0, 0};
    double& operator[](int i) { return v[i]; }
    double operator[](int i) const { return v[i]; }
    bool operator==(const Vec4d&) const = default;
};
// Quaternion (x, y, z, w); the identity rotation is (0, 0, 0, 1).
struct Quatd {
    double v[4] = {0, 0, 0, 1};
    double& operator[](int i) { return v[i]; }
    double operator[](int i) const { return v[i]; }
    bool operator==(const Quatd&) const = default;
};

template <class T>
struct Matrix4 {
    std::array<T, 16> m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

    static Matrix4 identity() { return Matrix4{}; }
    T& operator()(int row, int col) { return m[row * 4 + col]; }
    T operator()(int row, int col) const { return m[row * 4 + col]; }
    T& operator[](int i) { return m[i]; }
    T operator[](int i) const { return m[i]; }
    bool operator==(const Matrix4&) const = default;

    // This x other.
    Matrix4 operator*(const Matrix4& o) const {
        Matrix4 r;
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j) {
                T s = 0;
                for (int k = 0; k < 4; ++k) {
                    s += (*this)(i, k) * o(k, j);
                }
                r(i, j) = s;
            }
        }
        return r;
    }

    // Every element within eps of the identity, the test being not-greater.
    bool isIdentity(double eps) const {
        for (int i = 0; i < 16; ++i) {
            double expected = (i % 5 == 0) ? 1.0 : 0.0;
            if (std::fabs(static_cast<double>(m[i]) - expected) > eps) {
                return false;
            }
        }
        return true;
    }

    // p x M with w = 1.
    template <class V>
    V transformPoint(const V& p) const {
        V r;
        for (int j = 0; j < 3; ++j) {
            r[j] = static_cast<decltype(r[j] + 0)>(p[0] * (*this)(0, j) + p[1] * (*this)(1, j) +
                                                   p[2] * (*this)(2, j) + (*this)(3, j));
        }
        return r;
    }
    // v x M with w = 0: directions ignore the translation.
    template <class V>
    V transformVector(const V& p) const {
        V r;
        for (int j = 0; j < 3; ++j) {
            r[j] = static_cast<decltype(r[j] + 0)>(p[0] * (*this)(0, j) + p[1] * (*this)(1, j) +
                                                   p[2] * (*this)(2, j));
        }
        return r;
    }

    // General inverse by cofactors; a singular matrix gives the identity.
    Matrix4 inverse() const {
        const auto& a = m;
        std::array<T, 16> inv{};
        inv[0] = a[5] * a[10] * a[15] - a[5] * a[11] * a[14] - a[9] * a[6] * a[15] + a[9] * a[7] * a[14] +
                 a[13] * a[6] * a[11] - a[13] * a[7] * a[10];
        inv[4] = -a[4] * a[10] * a[15] + a[4] * a[11] * a[14] + a[8] * a[6] * a[15] - a[8] * a[7] * a[14] -
                 a[12] * a[6] * a[11] + a[12] * a[7] * a[10];
        inv[8] = a[4] * a[9] * a[15] - a[4] * a[11] * a[13] - a[8] * a[5] * a[15] + a[8] * a[7] * a[13] +
                 a[12] * a[5] * a[11] - a[12] * a[7] * a[9];
        inv[12] = -a[4] * a[9] * a[14] + a[4] * a[10] * a[13] + a[8] * a[5] * a[14] - a[8] * a[6] * a[13] -
                  a[12] * a[5] * a[10] + a[12] * a[6] * a[9];
        inv[1] = -a[1] * a[10] * a[15] + a[1] * a[11] * a[14] + a[9] * a[2] * a[15] - a[9] * a[3] * a[14] -
                 a[13] * a[2] * a[11] + a[13] * a[3] * a[10];
        inv[5] = a[0] * a[10] * a[15] - a[0] * a[11] * a[14] - a[8] * a[2] * a[15] + a[8] * a[3] * a[14] +
                 a[12] * a[2] * a[11] - a[12] * a[3] * a[10];
        inv[9] = -a[0] * a[9] * a[15] + a[0] * a[11] * a[13] + a[8] * a[1] * a[15] - a[8] * a[3] * a[13] -
                 a[12] * a[1] * a[11] + a[12] * a[3] * a[9];
        inv[13] = a[0] * a[9] * a[14] - a[0] * a[10] * a[13] - a[8] * a[1] * a[14] + a[8] * a[2] * a[13] +
                  a[12] * a[1] * a[10] - a[12] * a[2] * a[9];
        inv[2] = a[1] * a[6] * a[15] - a[1] * a[7] * a[14] - a[5] * a[2] * a[15] + a[5] * a[3] * a[14] +
                 a[13] * a[2] * a[7] - a[13] * a[3] * a[6];
        inv[6] = -a[0] * a[6] * a[15] + a[0] * a[7] * a[14] + a[4] * a[2] * a[15] - a[4] * a[3] * a[14] -
                 a[12] * a[2] * a[7] + a[12] * a[3] * a[6];
        inv[10] = a[0] * a[5] * a[15] - a[0] * a[7] * a[13] - a[4] * a[1] * a[15] + a[4] * a[3] * a[13] +
                  a[12] * a[1] * a[7] - a[12] * a[3] * a[5];
        inv[14] = -a[0] * a[5] * a[14] + a[0] * a[6] * a[13] + a[4] * a[1] * a[14] - a[4] * a[2] * a[13] -
                  a[12] * a[1] * a[6] + a[12] * a[2] * a[5];
        inv[3] = -a[1] * a[6] * a[11] + a[1] * a[7] * a[10] + a[5] * a[2] * a[11] - a[5] * a[3] * a[10] -
                 a[9] * a[2] * a[7] + a[9] * a[3] * a[6];
        inv[7] = a[0] * a[6] * a[11] - a[0] * a[7] * a[10] - a[4] * a[2] * a[11] + a[4] * a[3] * a[10] +
                 a[8] * a[2] * a[7] - a[8] * a[3] * a[6];
        inv[11] = -a[0] * a[5] * a[11] + a[0] * a[7] * a[9] + a[4] * a[1] * a[11] - a[4] * a[3] * a[9] -
                  a[8] * a[1] * a[7] + a[8] * a[3] * a[5];
        inv[15] = a[0] * a[5] * a[10] - a[0] * a[6] * a[9] - a[4] * a[1] * a[10] + a[4] * a[2] * a[9] +
                  a[8] * a[1] * a[6] - a[8] * a[2] * a[5];
        T det = a[0] * inv[0] + a[1] * inv[4] + a[2] * inv[8] + a[3] * inv[12];
        if (det == 0) {
            return Matrix4{};
        }
        Matrix4 r;
        for (int i = 0; i < 16; ++i) {
            r.m[i] = inv[i] / det;
        }
        return r;
    }
};

using Matrixd = Matrix4<double>;
using Matrixf = Matrix4<float>;

// Rotation matrix of a unit quaternion in the row-vector convention.
inline Matrixd quatToMatrix(const Quatd& q) {
    double x = q[0], y = q[1], z = q[2], w = q[3];
    Matrixd r;
    r(0, 0) = 1 - 2 * (y * y + z * z);
    r(0, 1) = 2 * (x * y + z * w);
    r(0, 2) = 2 * (x * z - y * w);
    r(1, 0) = 2 * (x * y - z * w);
    r(1, 1) = 1 - 2 * (x * x + z * z);
    r(1, 2) = 2 * (y * z + x * w);
    r(2, 0) = 2 * (x * z + y * w);
    r(2, 1) = 2 * (y * z - x * w);
    r(2, 2) = 1 - 2 * (x * x + y * y);
    return r;
}

inline Matrixd scaleMatrix(const Vec3d& s) {
    Matrixd r;
    r(0, 0) = s[0];
    r(1, 1) = s[1];
    r(2, 2) = s[2];
    return r;
}

inline Matrixd translateMatrix(const Vec3d& t) {
    Matrixd r;
    r(3, 0) = t[0];
    r(3, 1) = t[1];
    r(3, 2) = t[2];
    return r;
}

}  // namespace nq
