#pragma once
// Dropping list nodes that hold nothing to draw or to collide with.

#include <cstddef>

#include "model/BaseRenderNode.h"
#include "model/RootNode.h"

namespace model::utils {

// What a render node draws: the primitive count of its indices for a node with a mesh, the number
// of lights for fake lights, the number of light records for FakeSpotLights3Node; 1 for any other
// class, which is thus never taken for empty.
std::size_t renderPrimitiveCount(const BaseRenderNode& node);

// Keeps in the render list, in their order, only the nodes whose renderPrimitiveCount is not 0.
void removeEmptyRenderNodes(RootNode& root);
// Keeps in the shell list, in their order, only the nodes that are not empty.
void removeEmptyShellNodes(RootNode& root);

}  // namespace model::utils
