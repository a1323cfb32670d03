#pragma once
// Welding of nearly equal vertices inside one mesh.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "model/Indices.h"
#include "model/Vertices.h"

namespace model::utils {

// The welding tolerance of the export, 1e-5 as a single-precision value (bits 0x3727C5AC).
inline constexpr float kWeldTolerance = 1e-5f;

// Drops the vertices that no index names and lowers every index by the number of dropped vertex
// numbers below it. Returns the number dropped. A mesh that is not whole fails as checkMesh does.
std::uint32_t removeUnusedVertices(Vertices& vertices, Indices& indices, std::string_view nodeName = {});

// Whether two vertices of stride floats weld: every float differs by at most tolerance (computed
// in single precision), except the float at position 3, which must have the same bits: in a
// POSITION0 of four floats it is the number of the vertex's parent.
bool weldMatch(const float* a, const float* b, std::size_t stride, float tolerance);

// Removes the unused vertices, then welds: each vertex that is not yet welded away, in ascending
// order, takes every later vertex that matches it; the first vertex of a cluster survives with its
// values, and matches of matches are not chained. Indices are rewritten and the kept vertices
// keep their order. The matches are found through a balanced k-d tree over the first three
// floats. Returns the number of vertices removed, the unused ones included.
// A mesh that is not whole fails as checkMesh does, before anything changes.
std::uint32_t weldVertices(Vertices& vertices, Indices& indices, float tolerance,
                           std::string_view nodeName = {});

}  // namespace model::utils
