#pragma once
// Mesh extraction: the render nodes of a scene node's triangle mesh, one for each material that
// the mesh uses. Each face corner becomes a vertex record; equal records are welded; MeshCreator
// assembles the vertices.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "exporter/MaterialSource.h"
#include "exporter/NodeSettings.h"
#include "host/INode.h"
#include "host/Mesh.h"
#include "host/Mtl.h"
#include "model/BaseMeshRenderNode.h"
#include "model/Node.h"
#include "model/RootNode.h"

namespace exporter {

// Receives the smoothing groups of a render node's vertices, one for each vertex in vertex order,
// for the smoothing of normals across nodes.
using SmoothingCollector =
    std::function<void(const model::Ptr<model::BaseMeshRenderNode>& node, std::vector<std::uint32_t> groups)>;

// What the mesh converter works with.
struct MeshContext {
    host::TimeValue time = 0;
    MaterialSource* materials = nullptr;
    model::RootNode* root = nullptr;
    // Called for nodes whose smoothNormals is on; may be empty.
    SmoothingCollector collectSmoothing;
};

// The triangle object of an object: the object itself, or a converted one that ends with the
// holder. Empty when the object cannot give one.
class TriObjectHolder {
public:
    TriObjectHolder(host::Object* object, host::TimeValue t);
    ~TriObjectHolder();
    TriObjectHolder(const TriObjectHolder&) = delete;
    TriObjectHolder& operator=(const TriObjectHolder&) = delete;

    explicit operator bool() const { return tri_ != nullptr; }
    host::Mesh& mesh() { return tri_->GetMesh(); }

private:
    host::Object* object_;
    host::Object* converted_ = nullptr;
    host::TriObject* tri_ = nullptr;
};

// A node whose object matrix turns space inside out: the triple product of its three axes is
// below 0. Its triangles are taken with their corners in reverse.
bool isMirrored(const host::Matrix3& objectTM);

// The normal of one corner of a face, after buildRenderNormals: a specified normal as it stands;
// else the vertex normal whose smoothing groups share a bit with the face's; else the face normal,
// or (0, 1, 0) for a face without area.
host::Point3 cornerNormal(host::Mesh& mesh, int face, int corner);

// One render node of the faces whose material id modulo count equals index, hung on a transform
// under parent that carries the object offset, and entered in the root's render list. Nothing
// when the material converts to none or when no face is taken. The mesh's render normals must be
// built (Mesh::buildRenderNormals). Throws nq::ExtException on faults of the mesh or of the
// settings; then nothing is entered.
model::Ptr<model::BaseMeshRenderNode> exportRenderNode(const MeshContext& context, host::INode* node,
                                                       host::Mesh& mesh,
                                                       const model::Ptr<model::Node>& parent, host::Mtl* mtl,
                                                       int count, int index, const NodeSettings& settings);

// The render nodes of a geometry node, after building the mesh's render normals once for all of
// them: none without a material, one for each sub-material that is not null of a multi-material,
// one of all faces for any other material. A render node that fails is reported ("<fault> Node:
// <name>.") and left out; the others stand.
void exportRenderNodes(const MeshContext& context, host::INode* node, host::Mesh& mesh,
                       const model::Ptr<model::Node>& parent, const NodeSettings& settings);

// Bone names are shorter than this many bytes.
inline constexpr int kMaxBoneName = 32;
// Reports the name of a skin node that is too long to be a bone name; false then.
bool checkBoneName(const std::string& name);

}  // namespace exporter
