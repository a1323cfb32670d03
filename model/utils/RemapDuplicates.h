#pragma once
// Removal of vertices that are equal byte for byte.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "model/Indices.h"
#include "model/Vertices.h"

namespace model::utils {

// The remap table of meshoptimizer's meshopt_generateVertexRemap, computed here for vertices of
// any size: walking the indices in order, each vertex not yet numbered takes the number of the
// first earlier vertex with the same bytes, or the next free number. Vertices that no index names
// keep 0xFFFFFFFF. Returns the number of distinct vertices. Every index must be below count.
std::size_t generateVertexRemapBytes(std::uint32_t* remap, const std::uint32_t* indices,
                                     std::size_t indexCount, const void* vertices, std::size_t count,
                                     std::size_t vertexSize);

// Drops the vertices that equal an earlier one byte for byte (the first in index order is kept)
// and those no index names, through meshoptimizer's remap functions; vertices of more than 256
// bytes and index lists that are not whole triangles, which meshoptimizer does not take, go
// through generateVertexRemapBytes. Changes nothing
// unless the vertex count falls. Returns the number of vertices removed. A mesh that is not whole
// fails as checkMesh does.
std::uint32_t remapDuplicateVertices(Vertices& vertices, Indices& indices, std::string_view nodeName = {});

}  // namespace model::utils
