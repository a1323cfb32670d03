#pragma once
// Checks that the vertex passes make before they touch a mesh, so that a broken mesh ends in a
// clear message instead of a read past the end of an array.

#include <string_view>

#include "model/Indices.h"
#include "model/Vertices.h"

namespace model::utils {

// The message of a mesh whose attributes do not hold whole vertices of one count, and of a vertex
// layout that does not fit its material.
inline constexpr std::string_view kWrongVertexSize = "Wrong vertex size.";

// True when every attribute with a size holds whole vertices, all of the same count.
bool hasWholeVertices(const Vertices& vertices);

// Throws nq::ExtException "Wrong vertex size." unless hasWholeVertices, and
// "Index <i> is past the end of the <n> vertices of node '<name>'." for an index that names no
// vertex.
void checkMesh(const Vertices& vertices, const Indices& indices, std::string_view nodeName);

}  // namespace model::utils
