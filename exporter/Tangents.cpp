#include "exporter/Tangents.h"

#include <array>
#include <cmath>

namespace exporter {
namespace {

using V3 = std::array<float, 3>;

V3 operator-(const V3& a, const V3& b) {
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}
V3 operator+(const V3& a, const V3& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}
V3 operator*(const V3& a, float s) {
    return {a[0] * s, a[1] * s, a[2] * s};
}
float dot(const V3& a, const V3& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}
V3 cross(const V3& a, const V3& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
// The unit vector, or zero for one too short to have a direction.
V3 normalized(const V3& a) {
    float len = std::sqrt(dot(a, a));
    return len > 1e-12f ? a * (1.0f / len) : V3{};
}
bool isZero(const V3& a) {
    return a[0] == 0.0f && a[1] == 0.0f && a[2] == 0.0f;
}
// Some unit vector perpendicular to n (the x axis when n is zero).
V3 anyPerpendicular(const V3& n) {
    V3 axis = std::fabs(n[0]) < 0.9f ? V3{1, 0, 0} : V3{0, 1, 0};
    V3 p = normalized(axis - n * dot(axis, n));
    return isZero(p) ? V3{1, 0, 0} : p;
}

V3 read3(const MeshCreator& c, int semantic, std::size_t v) {
    const int n = c.floats(semantic);
    V3 out{};
    for (int i = 0; i < n && i < 3; ++i) {
        out[static_cast<std::size_t>(i)] =
            c.array(semantic)[v * static_cast<std::size_t>(n) + static_cast<std::size_t>(i)];
    }
    return out;
}

void write3(MeshCreator& c, int semantic, std::size_t v, const V3& value) {
    const int n = c.floats(semantic);
    for (int i = 0; i < n && i < 3; ++i) {
        c.array(semantic)[v * static_cast<std::size_t>(n) + static_cast<std::size_t>(i)] =
            value[static_cast<std::size_t>(i)];
    }
}

}  // namespace

void computeTangents(MeshCreator& creator, const std::vector<std::uint32_t>& indices, int texCoordSemantic,
                     int tangentSemantic, int binormalSemantic) {
    const std::size_t count = creator.vertexCount();
    std::vector<V3> tangents(count), binormals(count);
    const bool hasUv = texCoordSemantic >= 0 && creator.floats(texCoordSemantic) == 2;
    for (std::size_t f = 0; hasUv && f + 2 < indices.size(); f += 3) {
        const std::size_t i[3] = {indices[f], indices[f + 1], indices[f + 2]};
        const V3 p0 = read3(creator, kPositions, i[0]);
        const V3 e1 = read3(creator, kPositions, i[1]) - p0;
        const V3 e2 = read3(creator, kPositions, i[2]) - p0;
        const auto& uv = creator.array(texCoordSemantic);
        const float du1 = uv[2 * i[1]] - uv[2 * i[0]], dv1 = uv[2 * i[1] + 1] - uv[2 * i[0] + 1];
        const float du2 = uv[2 * i[2]] - uv[2 * i[0]], dv2 = uv[2 * i[2] + 1] - uv[2 * i[0] + 1];
        const float r = du1 * dv2 - du2 * dv1;
        if (std::fabs(r) < 1e-20f) {
            continue;  // the face has no extent in the texture
        }
        const V3 t = (e1 * dv2 - e2 * dv1) * (1.0f / r);
        const V3 b = (e2 * du1 - e1 * du2) * (1.0f / r);
        for (std::size_t k : i) {
            tangents[k] = tangents[k] + t;
            binormals[k] = binormals[k] + b;
        }
    }
    for (std::size_t v = 0; v < count; ++v) {
        const V3 n = normalized(read3(creator, kNormals, v));
        V3 t = normalized(tangents[v] - n * dot(n, tangents[v]));
        if (isZero(t)) {
            t = anyPerpendicular(n);
        }
        V3 b = normalized(binormals[v] - n * dot(n, binormals[v]) - t * dot(t, binormals[v]));
        if (isZero(b)) {
            b = normalized(cross(n, t));
        }
        write3(creator, tangentSemantic, v, t);
        write3(creator, binormalSemantic, v, b);
    }
}

}  // namespace exporter
