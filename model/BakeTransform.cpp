#include "model/BakeTransform.h"

#include <cmath>
#include <vector>

namespace model {

namespace {

using Matrix3 = std::array<std::array<double, 3>, 3>;

Matrix3 upper3x3(const nq::Matrixd& m) {
    Matrix3 r{};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            r[i][j] = m(i, j);
        }
    }
    return r;
}

double determinant(const Matrix3& a) {
    return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) -
           a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
           a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
}

// The transpose of the inverse, which is the cofactor matrix divided by the determinant.
Matrix3 inverseTranspose(const Matrix3& a, double det) {
    Matrix3 c{};
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            int i1 = (i + 1) % 3, i2 = (i + 2) % 3, j1 = (j + 1) % 3, j2 = (j + 2) % 3;
            c[i][j] = (a[i1][j1] * a[i2][j2] - a[i1][j2] * a[i2][j1]) / det;
        }
    }
    return c;
}

// Row vector v times a, rescaled to v's former length.
void transformDirection(float* v, const Matrix3& a) {
    double in[3] = {v[0], v[1], v[2]};
    double out[3];
    double before = 0, after = 0;
    for (int j = 0; j < 3; ++j) {
        out[j] = in[0] * a[0][j] + in[1] * a[1][j] + in[2] * a[2][j];
        before += in[j] * in[j];
        after += out[j] * out[j];
    }
    double k = after > 0 ? std::sqrt(before / after) : 0.0;
    for (int j = 0; j < 3; ++j) {
        v[j] = static_cast<float>(out[j] * k);
    }
}

void transformPoint(float* p, const nq::Matrixd& m) {
    double in[3] = {p[0], p[1], p[2]};
    for (int j = 0; j < 3; ++j) {
        p[j] = static_cast<float>(in[0] * m(0, j) + in[1] * m(1, j) + in[2] * m(2, j) + m(3, j));
    }
}

}  // namespace

std::uint32_t vertexParentTag(const Vertices& vertices, std::size_t vertex) {
    const VertexAttribute* position = vertices.findAttribute(POSITION0);
    if (!position || position->size < 4) {
        return 0;
    }
    return parentTagOf(position->data.at(vertex * static_cast<std::size_t>(position->size) + 3));
}

std::uint32_t parentTagOf(float fourth) {
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(static_cast<double>(fourth) + 0.5));
}

bool isAffine(const nq::Matrixd& m) {
    return m(0, 3) == 0 && m(1, 3) == 0 && m(2, 3) == 0 && m(3, 3) == 1;
}

double uniformScale(const nq::Matrixd& m) {
    if (!isAffine(m)) {
        return 0;
    }
    Matrix3 a = upper3x3(m);
    // Rows of a similarity are orthogonal and of one length.
    double s2 = a[0][0] * a[0][0] + a[0][1] * a[0][1] + a[0][2] * a[0][2];
    if (s2 <= 0) {
        return 0;
    }
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            double dot = a[i][0] * a[j][0] + a[i][1] * a[j][1] + a[i][2] * a[j][2];
            double expected = i == j ? s2 : 0.0;
            if (std::fabs(dot - expected) > 1e-5 * s2) {
                return 0;
            }
        }
    }
    return std::sqrt(s2);
}

bool bakeTransform(Vertices& vertices, std::uint32_t link, const nq::Matrixd& m) {
    std::size_t count = vertices.vertexCount();
    if (count == 0) {
        return true;
    }
    if (!isAffine(m) || !vertices.findAttribute(POSITION0) || !vertices.isValid()) {
        return false;
    }
    Matrix3 a = upper3x3(m);
    double det = determinant(a);
    if (det == 0) {
        return false;  // a flattening matrix cannot carry normals
    }
    bool mirror = det < 0;

    // The parent tags are read from POSITION0 directly: it is the lowest attribute, so it holds
    // exactly count vertices.
    const VertexAttribute& position = *vertices.findAttribute(POSITION0);
    std::vector<std::uint8_t> selected(count, link == 0 ? 1 : 0);
    if (position.size >= 4) {
        const auto size = static_cast<std::size_t>(position.size);
        for (std::size_t v = 0; v < count; ++v) {
            selected[v] = parentTagOf(position.data[v * size + 3]) == link ? 1 : 0;
        }
    }

    Matrix3 normalMatrix = inverseTranspose(a, det);
    for (auto& [semantic, attribute] : vertices.attributes) {
        if (attribute.size < 3) {
            continue;
        }
        std::size_t size = static_cast<std::size_t>(attribute.size);
        for (std::size_t v = 0; v < count && (v + 1) * size <= attribute.data.size(); ++v) {
            if (!selected[v]) {
                continue;
            }
            float* f = attribute.data.data() + v * size;
            switch (semantic) {
                case POSITION0:
                case POSITION1:
                    transformPoint(f, m);
                    break;
                case NORMAL0:
                case NORMAL1:
                    transformDirection(f, normalMatrix);
                    break;
                case TANGENT0:
                case TANGENT1:
                    transformDirection(f, a);
                    if (mirror && size >= 4) {
                        f[3] = -f[3];
                    }
                    break;
                case BINORMAL0:
                case BINORMAL1:
                    transformDirection(f, a);
                    break;
                default:
                    break;
            }
        }
    }

    return true;
}

}  // namespace model
