#include "exporter/ExportGeometry.h"

#include "core/Log.h"
#include "exporter/MeshExport.h"
#include "exporter/NQModelExporter.h"
#include "exporter/ReportError.h"
#include "host/Constants.h"

namespace exporter {
namespace {

constexpr const char* kSourcePath = "Exporter\\src\\Export";
// The interface that bone objects offer.
constexpr std::uint32_t kBoneInterface = 0x10D0;
// The TYPE bits a geometry node may carry.
constexpr std::uint32_t kGeometryFlags = kRenderable | kCollisionShell | kGCollisionShell | kWaterMask;

}  // namespace

void exportGeometry(NQModelExporter& exporter, const model::Ptr<model::Node>& parent, host::INode* node,
                    host::Object* object, const std::string& name, const NodeSettings& settings) {
    const bool bone =
        object->GetInterface(kBoneInterface) != nullptr || object->ClassID() == host::BONE_OBJ_CLASSID;
    const std::uint32_t flags = settings.flags;
    if (bone) {
        return;
    }
    if (flags & kFakeLights) {
        nq::nq_log(kLogSource, kLogLevel, "Fake lights from meshes are not exported yet. Node: " + name);
        return;
    }
    if (exporter.consumedNodes.count(node)) {
        return;
    }
    if (flags & kIkBone) {
        reportError("You should use type 'ik_bone' only in bones. Node '%s'.\tFile: %s:%d.", name.c_str(),
                    kSourcePath, __LINE__);
        return;
    }
    if (flags & ~kGeometryFlags) {
        reportError("Unknown flag in node %s. Expected 'renderable' or/and 'collision_shell'.\tFile: %s:%d.",
                    name.c_str(), kSourcePath, __LINE__);
        return;
    }
    TriObjectHolder tri(object, exporter.time);
    if (!tri) {
        return;
    }
    if (flags & (kWaterMask | kCollisionShell | kGCollisionShell)) {
        nq::nq_log(kLogSource, kLogLevel,
                   "Water masks and collision shells are not exported yet. Node: " + name);
    }
    if ((flags & kRenderable) || flags == 0) {
        model::utils::NormalSmoother& smoother = exporter.normalSmoother;
        const MeshContext context{
            exporter.time, &exporter.mtlKeeper, exporter.rootNode.get(),
            [&smoother](const model::Ptr<model::BaseMeshRenderNode>& renderNode,
                        std::vector<std::uint32_t> groups) { smoother.collect(renderNode, groups); }};
        exportRenderNodes(context, node, tri.mesh(), parent, settings);
    }
}

}  // namespace exporter
