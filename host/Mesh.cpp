#include "host/Mesh.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include <boost/container/small_vector.hpp>

namespace host {
namespace {

Point3 cross(const Point3& a, const Point3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

float dot(const Point3& a, const Point3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

float length(const Point3& a) {
    return std::sqrt(dot(a, a));
}

// The unit vector, or zero for a vector of no length.
Point3 normalized(const Point3& a) {
    float len = length(a);
    return len > 0.0f ? a * (1.0f / len) : Point3();
}

// The angle between two unit vectors from the cosine. Meshes laid out on a grid or built from
// regular shapes repeat a few corner angles over and over, so the angles of recent cosines are
// kept by the cosine's bits in a small table and the arc cosine is taken only for a new one.
class CornerAngles {
public:
    CornerAngles() { entries_.fill({0, std::acos(0.0f)}); }

    float angle(float cosine) {
        const float c = cosine < -1.0f ? -1.0f : cosine > 1.0f ? 1.0f : cosine;
        const auto bits = std::bit_cast<std::uint32_t>(c);
        Entry& entry = entries_[(bits * 0x9E3779B1u) >> (32 - kBits)];
        if (entry.bits != bits) {
            entry = {bits, std::acos(c)};
        }
        return entry.angle;
    }

private:
    static constexpr int kBits = 8;
    struct Entry {
        std::uint32_t bits;
        float angle;
    };
    std::array<Entry, 1u << kBits> entries_;
};

// The normals of one vertex while they are gathered: nearly every vertex has one or two, kept
// in place rather than in a heap block of their own.
using GatheredNormals = boost::container::small_vector<RNormal, 2>;

// Adds a face's weighted normal to the normals of one vertex. The face joins the first normal whose
// smoothing groups share a bit with its own; any further normal that shares a bit is folded into
// that one too, so that groups joined through this face end in one normal whatever the order of
// the faces.
void addNormal(GatheredNormals& normals, const Point3& weighted, DWORD smGroup) {
    RNormal* target = nullptr;
    for (std::size_t i = 0; i < normals.size();) {
        if (!(normals[i].smGroup & smGroup)) {
            ++i;
        } else if (!target) {
            target = &normals[i];
            ++i;
        } else {
            target->normal = target->normal + normals[i].normal;
            target->smGroup |= normals[i].smGroup;
            normals.erase(normals.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
    if (target) {
        target->normal = target->normal + weighted;
        target->smGroup |= smGroup;
    } else {
        normals.push_back({weighted, smGroup});
    }
}

}  // namespace

void Mesh::setSpecifiedNormal(int vertex, const Point3& normal) {
    if (specified_.size() < verts.size()) {
        specified_.resize(verts.size());
    }
    specified_[static_cast<std::size_t>(vertex)] = normal;
}

Point3 Mesh::FaceNormal(int face, bool normalize) const {
    const Face& f = faces[static_cast<std::size_t>(face)];
    const Point3& v0 = getVert(static_cast<int>(f.v[0]));
    const Point3& v1 = getVert(static_cast<int>(f.v[1]));
    const Point3& v2 = getVert(static_cast<int>(f.v[2]));
    Point3 n = cross(v1 - v0, v2 - v1);
    return normalize ? normalized(n) : n;
}

Point3 Mesh::FaceCenter(int face) const {
    const Face& f = faces[static_cast<std::size_t>(face)];
    return (getVert(static_cast<int>(f.v[0])) + getVert(static_cast<int>(f.v[1])) +
            getVert(static_cast<int>(f.v[2]))) *
           (1.0f / 3.0f);
}

// Each face adds its unit normal, weighted by its angle at the corner, to the vertex normal of
// its smoothing groups. Faces without a smoothing group add nothing: their corners take the face
// normal. A vertex with a specified normal keeps that one alone.
void Mesh::buildRenderNormals() {
    const std::size_t vertexCount = verts.size();
    faceNormals_.assign(faces.size(), Point3());
    std::vector<GatheredNormals> normals(vertexCount);
    specified_.resize(vertexCount);
    CornerAngles angles;
    for (std::size_t f = 0; f < faces.size(); ++f) {
        const Face& face = faces[f];
        const Point3 edges[3] = {verts[face.v[1]] - verts[face.v[0]], verts[face.v[2]] - verts[face.v[1]],
                                 verts[face.v[0]] - verts[face.v[2]]};
        faceNormals_[f] = normalized(cross(edges[0], edges[1]));
        if (face.smGroup == 0) {
            continue;
        }
        // At corner k the face runs along edge k and comes in along edge k + 2. The direction
        // back along that edge is its unit vector negated: the cosine comes out the same, at most
        // a zero of the other sign, which has the same angle. So each edge is normalised once for
        // the two corners it touches.
        const Point3 units[3] = {normalized(edges[0]), normalized(edges[1]), normalized(edges[2])};
        for (int k = 0; k < 3; ++k) {
            DWORD v = face.v[k];
            if (specified_[v]) {
                continue;
            }
            const float angle = angles.angle(-dot(units[k], units[(k + 2) % 3]));
            addNormal(normals[v], faceNormals_[f] * angle, face.smGroup);
        }
    }
    rVerts_.assign(vertexCount, RVertex());
    for (std::size_t v = 0; v < vertexCount; ++v) {
        RVertex& rv = rVerts_[v];
        if (specified_[v]) {
            rv.rFlags = SPECIFIED_NORMAL | 1;
            rv.rn.normal = *specified_[v];
            continue;
        }
        for (RNormal& n : normals[v]) {
            n.normal = normalized(n.normal);
        }
        rv.rFlags = static_cast<DWORD>(normals[v].size()) & NORCT_MASK;
        if (normals[v].size() == 1) {
            rv.rn = normals[v][0];
        } else {
            rv.ern.assign(normals[v].begin(), normals[v].end());
        }
    }
}

}  // namespace host
