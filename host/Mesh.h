#pragma once
// The host's triangle mesh: vertices, faces with a smoothing group and a material id, map channels
// with their own vertices and faces, and the render normals that the host builds from the
// smoothing groups. Unlike the other host classes this one is concrete, as the host's is: its
// data is plain and its operations are the host's own functions.

#include <cstdint>
#include <optional>
#include <vector>

#include "host/Matrix3.h"
#include "host/Object.h"

namespace host {

using DWORD = std::uint32_t;
using MtlID = std::uint16_t;

// The number of normals of a render vertex stands in the low byte of its flags.
inline constexpr DWORD NORCT_MASK = 0xFF;
// The render vertex holds one normal given by the user, which overrides the smoothing groups.
inline constexpr DWORD SPECIFIED_NORMAL = 0x4000;

class Face {
public:
    DWORD v[3] = {0, 0, 0};
    DWORD smGroup = 0;

    DWORD getVert(int corner) const { return v[corner]; }
    DWORD getSmGroup() const { return smGroup; }
    MtlID getMatID() const { return matID_; }
    void setMatID(MtlID id) { matID_ = id; }

private:
    MtlID matID_ = 0;
};

// A face of a map channel: the map vertices of the three corners of the mesh face of that number.
struct TVFace {
    DWORD t[3] = {0, 0, 0};
};

class MeshMap {
public:
    int getNumVerts() const { return static_cast<int>(tv.size()); }
    int getNumFaces() const { return static_cast<int>(tf.size()); }

    std::vector<Point3> tv;
    std::vector<TVFace> tf;
};

// One normal of a render vertex and the smoothing groups of the faces that made it.
struct RNormal {
    Point3 normal;
    DWORD smGroup = 0;

    const Point3& getNormal() const { return normal; }
    DWORD getSmGroup() const { return smGroup; }
};

// The normals of one vertex: one for each set of faces around it whose smoothing groups join.
// With one normal it stands in rn, with more in ern.
struct RVertex {
    DWORD rFlags = 0;
    RNormal rn;
    std::vector<RNormal> ern;
};

class Mesh {
public:
    int getNumVerts() const { return static_cast<int>(verts.size()); }
    int getNumFaces() const { return static_cast<int>(faces.size()); }
    const Point3& getVert(int i) const { return verts[static_cast<std::size_t>(i)]; }

    // Channels 0 to getNumMaps() - 1 exist; any of them may be empty (no vertices or no faces).
    int getNumMaps() const { return static_cast<int>(maps.size()); }
    MeshMap& Map(int channel) { return maps[static_cast<std::size_t>(channel)]; }

    // Gives vertex i a normal of its own that the smoothing groups do not change.
    void setSpecifiedNormal(int vertex, const Point3& normal);

    // Face normals and the render vertices from the smoothing groups (see Mesh.cpp).
    void buildRenderNormals();
    // Valid after buildRenderNormals.
    RVertex* getRVertPtr(int vertex) { return &rVerts_[static_cast<std::size_t>(vertex)]; }
    // The unit normal of a face, the zero vector for a face without area; valid after
    // buildRenderNormals.
    const Point3& getFaceNormal(int face) const { return faceNormals_[static_cast<std::size_t>(face)]; }

    // Computed from the vertices at the call.
    Point3 FaceNormal(int face, bool normalize = false) const;
    Point3 FaceCenter(int face) const;

    std::vector<Point3> verts;
    std::vector<Face> faces;
    std::vector<MeshMap> maps;

private:
    std::vector<std::optional<Point3>> specified_;
    std::vector<RVertex> rVerts_;
    std::vector<Point3> faceNormals_;
};

// The geometry super class.
class GeomObject : public Object {
public:
    SClass_ID SuperClassID() override { return 0x10; }  // GEOMOBJECT_CLASS_ID
};

// The triangle object, class (9, 0): what every geometry object converts to.
class TriObject : public GeomObject {
public:
    Class_ID ClassID() override { return Class_ID(0x9, 0); }  // TRIOBJ_CLASS_ID
    bool CanConvertToType(Class_ID id) override { return id == ClassID(); }
    Object* ConvertToType(TimeValue, Class_ID id) override { return id == ClassID() ? this : nullptr; }

    Mesh& GetMesh() { return mesh; }

    Mesh mesh;
};

}  // namespace host
