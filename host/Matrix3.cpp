#include "host/Matrix3.h"

namespace host {

Point3 operator*(const Point3& p, const Matrix3& m) {
    return VectorTransform(m, p) + m.GetTrans();
}

Point3 VectorTransform(const Matrix3& m, const Point3& v) {
    return m.GetRow(0) * v.x + m.GetRow(1) * v.y + m.GetRow(2) * v.z;
}

Matrix3 Matrix3::operator*(const Matrix3& o) const {
    Matrix3 r;
    for (int i = 0; i < 3; ++i) {
        r.rows_[i] = VectorTransform(o, rows_[i]);
    }
    r.rows_[3] = rows_[3] * o;
    return r;
}

Matrix3 Inverse(const Matrix3& m) {
    const Point3& a = m.GetRow(0);
    const Point3& b = m.GetRow(1);
    const Point3& c = m.GetRow(2);
    // Rows of the adjugate of the upper 3 by 3, by cofactors.
    Point3 r0(b.y * c.z - b.z * c.y, a.z * c.y - a.y * c.z, a.y * b.z - a.z * b.y);
    Point3 r1(b.z * c.x - b.x * c.z, a.x * c.z - a.z * c.x, a.z * b.x - a.x * b.z);
    Point3 r2(b.x * c.y - b.y * c.x, a.y * c.x - a.x * c.y, a.x * b.y - a.y * b.x);
    float det = a.x * r0.x + a.y * r1.x + a.z * r2.x;
    if (det == 0.0f) {
        return Matrix3();
    }
    float inv = 1.0f / det;
    Matrix3 r(r0 * inv, r1 * inv, r2 * inv, Point3());
    Point3 t = VectorTransform(r, m.GetTrans());
    r.SetTrans(Point3(-t.x, -t.y, -t.z));
    return r;
}

nq::Matrixd toMatrixd(const Matrix3& m) {
    nq::Matrixd r;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 3; ++j) {
            r(i, j) = m.GetRow(i)[j];
        }
    }
    return r;
}

}  // namespace host
