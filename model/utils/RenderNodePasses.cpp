#include "model/utils/RenderNodePasses.h"

#include "model/utils/MaterialShells.h"
#include "model/utils/MergeRenderNodes.h"
#include "model/utils/PrepareVertices.h"
#include "model/utils/WeldVertices.h"

namespace model::utils {

RenderNodePassStats runRenderNodePasses(RootNode& root) {
    RenderNodePassStats stats;
    stats.channelsRemoved = prepareVertices(root);
    stats.weldedVertices = weldRenderNodes(root, kWeldTolerance);
    stats.extreme = extremeOptimize(root, kWeldTolerance, RenderMeshes::Welded);
    stats.shellsMade = convertMaterialNodesToShells(root);
    stats.merge = mergeRenderNodes(root);
    stats.remap = remapOptimize(root);
    return stats;
}

}  // namespace model::utils
