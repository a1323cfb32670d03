#pragma once
// Tangents and binormals of a triangle list for one texture-coordinate channel.

#include <cstdint>
#include <vector>

#include "exporter/MeshCreator.h"

namespace exporter {

// Fills the tangent and binormal arrays (tangentSemantic, binormalSemantic) of creator from its
// positions, normals, the texture coordinates at texCoordSemantic and the triangle list. A
// texCoordSemantic of -1, or one the format lacks, leaves the tangents to the normal alone. Each
// tangent is the direction of growing u along the surface, made perpendicular to the normal;
// each binormal that of growing v, made perpendicular to both.
void computeTangents(MeshCreator& creator, const std::vector<std::uint32_t>& indices, int texCoordSemantic,
                     int tangentSemantic, int binormalSemantic);

}  // namespace exporter
