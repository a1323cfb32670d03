#pragma once
// Baking a static matrix into data that hangs on one link of a node, so that the data looks the
// same once the link is moved above the transform it stood under.

#include <cstdint>

#include "core/Math.h"
#include "model/Indices.h"
#include "model/Vertices.h"

namespace model {

// The parent number a vertex carries in the fourth float of a four-float POSITION0; vertices
// with three floats belong to parent 0.
std::uint32_t vertexParentTag(const Vertices& vertices, std::size_t vertex);

// True for a matrix whose last column is (0, 0, 0, 1).
bool isAffine(const nq::Matrixd& m);

// Applies m to the vertices whose parent tag is link:
// - POSITION0 and POSITION1 as points (the parent tag stays as it is);
// - NORMAL0 and NORMAL1 by the inverse-transpose of m's upper 3 x 3, so that they stay
//   perpendicular to the surface under non-uniform scale;
// - TANGENT0/1 and BINORMAL0/1 as directions by the upper 3 x 3 itself, since they lie in the
//   surface as the positions do; a four-float tangent's handedness flips with a mirroring m;
// each direction is rescaled to its former length.
// A mirroring m also reverses the winding of the triangles of those vertices, so that the same
// faces stay in front. False, and nothing changed, when the result would not render the same: m
// is not affine, there are vertices but no POSITION0, a mirroring m meets triangle strips or
// fans, or a triangle joins vertices of this link and of another.
bool bakeTransform(Vertices& vertices, Indices& indices, std::uint32_t link, const nq::Matrixd& m);

// For data without surfaces (points, directions, sizes): s when the upper 3 x 3 of m is a
// rotation, possibly mirrored, times the uniform scale s; 0 when it is not, or m is not affine.
double uniformScale(const nq::Matrixd& m);

}  // namespace model
