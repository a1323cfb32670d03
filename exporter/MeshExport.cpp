#include "exporter/MeshExport.h"

#include <cmath>

#include "core/ExtException.h"
#include "core/Log.h"
#include "exporter/MeshCreator.h"
#include "exporter/ReportError.h"
#include "exporter/Tangents.h"
#include "exporter/VertexRecord.h"
#include "host/Constants.h"
#include "model/ObjectRegistry.h"
#include "model/RenderNode.h"
#include "model/TransformNode.h"
#include "model/VertexSemantic.h"

namespace exporter {
namespace {

constexpr const char* kSourcePath = "Exporter\\src\\MeshCreator";
// Faults of a render node are reported where the node is exported.
constexpr const char* kExportSourcePath = "Exporter\\src\\Export";
// The coordinate entries of the normal map and of the damage normal map in a material.
constexpr std::size_t kNormalMapCoords = 1;
constexpr std::size_t kDamageNormalMapCoords = 10;
// The texture slot of each coordinate entry: the same number, except for the last entry.
constexpr std::size_t textureSlotOfCoords(std::size_t c) {
    return c < 12 ? c : 13;
}

float dot(const host::Point3& a, const host::Point3& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

host::Point3 cross(const host::Point3& a, const host::Point3& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

// The transform of the texture that owns coordinate channel `position` of the material: the
// first texture whose coordinate entry names it. Null when that texture is plain (its matrix is
// the identity within 1e-6) or when no texture names the channel.
const nq::Matrixf* textureTransform(const model::PropertiesSet& material, std::size_t position) {
    for (std::size_t c = 0; c < material.textureChannels.size(); ++c) {
        if (material.textureChannels[c] == position) {
            const model::Texture& texture = material.textures[textureSlotOfCoords(c)];
            return !texture.empty() && !texture.matrix.isIdentity(1e-6) ? &texture.matrix : nullptr;
        }
    }
    return nullptr;
}

// The texture-coordinate semantic of a material's coordinate entry, or -1 when it has none.
int texCoordSemantic(const model::PropertiesSet& material, std::size_t entry) {
    const std::uint32_t position = material.textureChannels[entry];
    return position == model::kNoTexCoordChannel || position >= static_cast<std::uint32_t>(kTexCoordArrays)
               ? -1
               : kFirstTexCoord + static_cast<int>(position);
}

// The map vertex of one face corner in map channel c, or kNoMapVertex when the channel is
// missing or empty or the corner's map vertex is out of range: the corner then takes (0, 0).
constexpr std::uint32_t kNoMapVertex = 0xFFFFFFFFu;
std::uint32_t cornerMapVertex(host::Mesh& mesh, std::uint32_t c, int face, int corner) {
    if (c >= static_cast<std::uint32_t>(mesh.getNumMaps())) {
        return kNoMapVertex;
    }
    host::MeshMap& map = mesh.Map(static_cast<int>(c));
    if (map.getNumVerts() == 0 || face >= map.getNumFaces()) {
        return kNoMapVertex;
    }
    const host::DWORD t = map.tf[static_cast<std::size_t>(face)].t[corner];
    return t < static_cast<host::DWORD>(map.getNumVerts()) ? t : kNoMapVertex;
}

// The (u, 1 - v) of map vertex t of channel c (as cornerMapVertex gives it), through the
// texture's transform when it has one; (0, 0) for kNoMapVertex.
std::array<float, 2> mapTexCoord(host::Mesh& mesh, std::uint32_t c, std::uint32_t t,
                                 const nq::Matrixf* transform) {
    if (t == kNoMapVertex) {
        return {0, 0};
    }
    const host::Point3& p = mesh.Map(static_cast<int>(c)).tv[t];
    float u = p.x, v = p.y;
    if (transform) {
        const nq::Matrixf& m = *transform;
        const float tu = u * m(0, 0) + v * m(1, 0) + m(3, 0);
        const float tv = u * m(0, 1) + v * m(1, 1) + m(3, 1);
        u = tu;
        v = tv;
    }
    return {u, 1.0f - v};
}

// Where the normal of a face corner comes from: the place of a normal among those of its render
// vertex (0 for a specified normal or the only one), or kFaceNormal. A vertex holds at most 32
// normals, as the normals of one vertex share no smoothing group.
constexpr std::uint32_t kFaceNormal = 0x100;
std::uint32_t cornerNormalSource(host::Mesh& mesh, const host::Face& f, int corner) {
    const host::RVertex& rv = *mesh.getRVertPtr(static_cast<int>(f.v[corner]));
    const host::DWORD count = rv.rFlags & host::NORCT_MASK;
    if (rv.rFlags & host::SPECIFIED_NORMAL) {
        return 0;
    }
    if (count == 1 && (rv.rn.getSmGroup() & f.smGroup)) {
        return 0;
    }
    if (count >= 2) {
        for (std::size_t i = 0; i < rv.ern.size(); ++i) {
            if (rv.ern[i].getSmGroup() & f.smGroup) {
                return static_cast<std::uint32_t>(i);
            }
        }
    }
    return kFaceNormal;
}

// The normal that cornerNormalSource names for a corner.
host::Point3 sourcedNormal(host::Mesh& mesh, int face, int corner, std::uint32_t source) {
    if (source == kFaceNormal) {
        const host::Point3& n = mesh.getFaceNormal(face);
        return std::sqrt(dot(n, n)) < 0.0001f ? host::Point3(0, 1, 0) : n;
    }
    const host::Face& f = mesh.faces[static_cast<std::size_t>(face)];
    const host::RVertex& rv = *mesh.getRVertPtr(static_cast<int>(f.v[corner]));
    const bool single = (rv.rFlags & host::SPECIFIED_NORMAL) || (rv.rFlags & host::NORCT_MASK) == 1;
    return single ? rv.rn.getNormal() : rv.ern[source].getNormal();
}

// The distinct sources of the corners of one render node. Corners with the same vertex, the same
// normal source, smoothing group and map vertices make records equal bit for bit, so only the
// first of them makes one. The sources of each vertex are chained, newest first.
class CornerSources {
public:
    CornerSources(std::size_t vertexCount, std::size_t channelCount)
        : firstOfVertex_(vertexCount, kNone), channels_(channelCount), cornerMaps_(channelCount) {}

    // The map vertices of the corner being added, one for each channel, to be filled before add.
    std::uint32_t* cornerMaps() { return cornerMaps_.data(); }

    // The number of the corner's source, a new one when no earlier corner had the same.
    std::uint32_t add(int face, int corner, std::uint32_t vertex, std::uint32_t normal,
                      std::uint32_t smGroup) {
        std::uint32_t s = firstOfVertex_[vertex];
        while (s != kNone && !sameSource(sources_[s], normal, smGroup, s)) {
            s = sources_[s].next;
        }
        if (s == kNone) {
            s = static_cast<std::uint32_t>(sources_.size());
            sources_.push_back({normal, smGroup, firstOfVertex_[vertex], face, corner});
            firstOfVertex_[vertex] = s;
            maps_.insert(maps_.end(), cornerMaps_.begin(), cornerMaps_.end());
        }
        return s;
    }

    std::size_t size() const { return sources_.size(); }
    // The first corner of source s.
    int face(std::uint32_t s) const { return sources_[s].face; }
    int corner(std::uint32_t s) const { return sources_[s].corner; }
    std::uint32_t normal(std::uint32_t s) const { return sources_[s].normal; }
    std::uint32_t mapVertex(std::uint32_t s, std::size_t channel) const {
        return maps_[s * channels_ + channel];
    }

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;
    struct Source {
        std::uint32_t normal;
        std::uint32_t smGroup;
        std::uint32_t next;
        int face;
        int corner;
    };

    bool sameSource(const Source& source, std::uint32_t normal, std::uint32_t smGroup,
                    std::uint32_t s) const {
        if (source.normal != normal || source.smGroup != smGroup) {
            return false;
        }
        // A plain loop: there are one or two channels, too few for a call to memcmp to pay.
        const std::uint32_t* maps = maps_.data() + s * channels_;
        for (std::size_t i = 0; i < channels_; ++i) {
            if (maps[i] != cornerMaps_[i]) {
                return false;
            }
        }
        return true;
    }

    std::vector<std::uint32_t> firstOfVertex_;
    std::size_t channels_;
    std::vector<std::uint32_t> cornerMaps_;
    std::vector<Source> sources_;
    std::vector<std::uint32_t> maps_;
};

// Whether the node's object carries a skin. Skinned meshes export as plain meshes until bones
// are exported.
bool hasSkin(host::INode* node) {
    host::Object* object = node->GetObjectRef();
    return object && object->GetInterface(host::I_SKIN) != nullptr;
}

}  // namespace

TriObjectHolder::TriObjectHolder(host::Object* object, host::TimeValue t) : object_(object) {
    const host::Class_ID triangles(host::TRIOBJ_CLASS_ID, 0);
    if (!object_ || !object_->CanConvertToType(triangles)) {
        return;
    }
    host::Object* converted = object_->ConvertToType(t, triangles);
    if (converted && converted != object_) {
        converted_ = converted;
    }
    tri_ = dynamic_cast<host::TriObject*>(converted);
}

TriObjectHolder::~TriObjectHolder() {
    if (converted_) {
        converted_->DeleteThis();
    }
}

bool isMirrored(const host::Matrix3& objectTM) {
    return dot(cross(objectTM.GetRow(0), objectTM.GetRow(1)), objectTM.GetRow(2)) < 0.0f;
}

host::Point3 cornerNormal(host::Mesh& mesh, int face, int corner) {
    const host::Face& f = mesh.faces[static_cast<std::size_t>(face)];
    return sourcedNormal(mesh, face, corner, cornerNormalSource(mesh, f, corner));
}

model::Ptr<model::BaseMeshRenderNode> exportRenderNode(const MeshContext& context, host::INode* node,
                                                       host::Mesh& mesh,
                                                       const model::Ptr<model::Node>& parent, host::Mtl* mtl,
                                                       int count, int index, const NodeSettings& settings) {
    const std::string name = node->GetName();
    if (hasSkin(node)) {
        nq::nq_log(kLogSource, kLogLevel,
                   "The skin of node " + name + " is ignored: the node is exported as a plain mesh.");
    }
    model::Ptr<model::RenderNode> renderNode = model::createAs<model::RenderNode>("model::RenderNode");
    const host::Matrix3 objectTM = node->GetObjectTM(context.time);
    const bool mirrored = isMirrored(objectTM);
    PropertiesSetPtr material = context.materials->getMaterial(mtl, 0, "model::RenderNode", node);
    if (!material) {
        return {};
    }
    const model::VertexFormat& format = material->vertexFormat;
    const bool hasNormals = format[model::NORMAL0] > 0;

    std::vector<std::uint32_t> channels;
    context.materials->getTextureChannels(material.get(), channels);
    std::vector<const nq::Matrixf*> transforms;
    for (std::size_t i = 0; i < channels.size(); ++i) {
        transforms.push_back(textureTransform(*material, i));
    }

    // The sources of each corner of each face taken, the corners of a mirrored node in reverse so
    // that its faces keep their outward side; then one record for each distinct source.
    const int corners[2][3] = {{0, 1, 2}, {2, 1, 0}};
    CornerSources sources(mesh.verts.size(), channels.size());
    std::vector<std::uint32_t> indices;
    indices.reserve(count == 1 ? mesh.faces.size() * 3 : 0);
    for (int f = 0; f < mesh.getNumFaces(); ++f) {
        const host::Face& face = mesh.faces[static_cast<std::size_t>(f)];
        if (face.getMatID() % count != index) {
            continue;
        }
        for (int k : corners[mirrored ? 1 : 0]) {
            std::uint32_t normal = 0;
            if (hasNormals) {
                normal = cornerNormalSource(mesh, face, k);
                // The face normal is the face's own.
                if (normal == kFaceNormal) {
                    normal += static_cast<std::uint32_t>(f);
                }
            }
            std::uint32_t* maps = sources.cornerMaps();
            for (std::size_t i = 0; i < channels.size(); ++i) {
                maps[i] = cornerMapVertex(mesh, channels[i], f, k);
            }
            indices.push_back(sources.add(f, k, face.v[k], normal, hasNormals ? face.smGroup : 0));
        }
    }
    if (indices.empty()) {
        return {};
    }
    std::vector<VertexRecord> records(sources.size());
    for (std::uint32_t s = 0; s < sources.size(); ++s) {
        VertexRecord& record = records[s];
        const int f = sources.face(s), k = sources.corner(s);
        const host::Face& face = mesh.faces[static_cast<std::size_t>(f)];
        const host::Point3& p = mesh.getVert(static_cast<int>(face.v[k]));
        record.position = {p.x, p.y, p.z};
        if (hasNormals) {
            record.smoothingGroup = face.smGroup;
            const std::uint32_t normal = sources.normal(s);
            const host::Point3 n = sourcedNormal(mesh, f, k, normal >= kFaceNormal ? kFaceNormal : normal);
            record.normal = {n.x, n.y, n.z};
        }
        for (std::size_t i = 0; i < channels.size(); ++i) {
            record.texCoords.push_back(
                mapTexCoord(mesh, channels[i], sources.mapVertex(s, i), transforms[i]));
        }
    }

    weldRecords(records, indices);
    MeshCreator creator(format, records.size());
    for (std::size_t v = 0; v < records.size(); ++v) {
        creator.addVertex(v, records[v]);
    }
    if (format[model::TANGENT0] > 0 || format[model::BINORMAL0] > 0) {
        computeTangents(creator, indices, texCoordSemantic(*material, kNormalMapCoords), kTangents,
                        kBinormals);
    }
    if (format[model::TANGENT1] > 0 || format[model::BINORMAL1] > 0) {
        computeTangents(creator, indices, texCoordSemantic(*material, kDamageNormalMapCoords),
                        kDamageTangents, kDamageBinormals);
    }
    renderNode->vertices = creator.build();
    renderNode->indices = model::Indices(model::kTriangleList, std::move(indices));

    for (const auto& property : settings.properties) {
        if (property && property->name == "__VERSION__") {
            throw nq::ExtException("__VERSION__ property is official property, don't use it.");
        }
    }
    renderNode->name = name;
    renderNode->properties = settings.properties;
    renderNode->material = material;
    // The vertices are in the object's space; the object offset places them relative to the node.
    model::Ptr<model::TransformNode> offset = model::createAs<model::TransformNode>("model::TransformNode");
    offset->matrix = host::toMatrixd(objectTM * host::Inverse(node->GetNodeTM(context.time)));
    parent->append(offset);
    renderNode->links.push_back(model::RenderLink{offset});
    context.root->addRenderNode(renderNode);

    if (hasNormals && settings.smoothNormals && context.collectSmoothing) {
        std::vector<std::uint32_t> groups;
        groups.reserve(records.size());
        for (const VertexRecord& record : records) {
            groups.push_back(record.smoothingGroup);
        }
        context.collectSmoothing(renderNode, std::move(groups));
    }
    return renderNode;
}

void exportRenderNodes(const MeshContext& context, host::INode* node, host::Mesh& mesh,
                       const model::Ptr<model::Node>& parent, const NodeSettings& settings) {
    host::Mtl* mtl = node->GetMtl();
    if (!mtl || !context.materials) {
        return;
    }
    // The render normals depend on the mesh alone: they are built once for all its render nodes.
    mesh.buildRenderNormals();
    // A fault in one render node drops that node alone; the others of the mesh and the walk go on.
    auto exportOne = [&](host::Mtl* material, int count, int index) {
        try {
            exportRenderNode(context, node, mesh, parent, material, count, index, settings);
        } catch (const nq::ExtException& e) {
            reportError("%s Node: %s.\tFile: %s:%d.", e.message().c_str(), node->GetName().c_str(),
                        kExportSourcePath, __LINE__);
        }
    };
    if (mtl->ClassID() == host::Class_ID(host::MULTI_CLASS_ID, 0)) {
        const int count = mtl->NumSubMtls();
        for (int i = 0; i < count; ++i) {
            if (host::Mtl* sub = mtl->GetSubMtl(i)) {
                exportOne(sub, count, i);
            }
        }
        return;
    }
    exportOne(mtl, 1, 0);
}

bool checkBoneName(const std::string& name) {
    if (name.size() < static_cast<std::size_t>(kMaxBoneName)) {
        return true;
    }
    reportError("Node '%s' has tool long name for bone (%d vs. %d)! \tFile: %s:%d.", name.c_str(),
                static_cast<int>(name.size()), kMaxBoneName, kSourcePath, __LINE__);
    return false;
}

}  // namespace exporter
