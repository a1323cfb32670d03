#pragma once
// The render-node passes of the export, in their fixed order, as one call.

#include <cstdint>

#include "model/RootNode.h"
#include "model/utils/MergeCounters.h"
#include "model/utils/VertexWorkers.h"

namespace model::utils {

struct RenderNodePassStats {
    // Texture-coordinate channels taken out of materials by prepareVertices.
    std::uint32_t channelsRemoved = 0;
    // Vertices removed by the welding of the render nodes.
    std::uint32_t weldedVertices = 0;
    // What the extreme workers removed from render and shell nodes.
    RemovedCounts extreme;
    // Render nodes turned into shells.
    std::uint32_t shellsMade = 0;
    MergeCounters merge;
    // What the remap workers removed.
    RemovedCounts remap;
};

// On the root, in this order: prepareVertices; weldRenderNodes with kWeldTolerance;
// extremeOptimize with kWeldTolerance (the render meshes welded); convertMaterialNodesToShells;
// mergeRenderNodes; remapOptimize. Failures are nq::ExtException and leave the model half processed; the
// exporter writes no file then.
RenderNodePassStats runRenderNodePasses(RootNode& root);

}  // namespace model::utils
