#pragma once
// Baking a static matrix into data that hangs on one link of a node, so that the data looks the
// same once the link is moved above the transform it stood under.

#include <cstdint>

#include "core/Math.h"
#include "model/Vertices.h"

namespace model {

// The parent number a vertex carries in the fourth float of a four-float POSITION0; vertices
// with three floats belong to parent 0.
std::uint32_t vertexParentTag(const Vertices& vertices, std::size_t vertex);
// The parent number that a fourth float of POSITION0 carries, rounded to the nearest.
std::uint32_t parentTagOf(float fourth);

// True for a matrix whose last column is (0, 0, 0, 1).
bool isAffine(const nq::Matrixd& m);

// Applies m to the vertices whose parent tag is link:
// - POSITION0 and POSITION1 as points (the parent tag stays as it is);
// - NORMAL0 and NORMAL1 by the inverse-transpose of m's upper 3 x 3, so that they stay
//   perpendicular to the surface under non-uniform scale;
// - TANGENT0/1 and BINORMAL0/1 as directions by the upper 3 x 3 itself, since they lie in the
//   surface as the positions do; a four-float tangent's handedness flips with a mirroring m;
// each direction is rescaled to its former length.
// The index order stays as it is: the renderer takes a triangle's front from its winding in model
// space, whatever matrix it was drawn through, so the baked triangles show the same side. A
// mirrored scene node has its corners reversed when its mesh is exported for exactly that reason.
// False, and nothing changed, when the result would not render the same: m is not affine or
// flattens, or there are vertices but no POSITION0.
bool bakeTransform(Vertices& vertices, std::uint32_t link, const nq::Matrixd& m);

// For data without surfaces (points, directions, sizes): s when the upper 3 x 3 of m is a
// rotation, possibly mirrored, times the uniform scale s; 0 when it is not, or m is not affine.
double uniformScale(const nq::Matrixd& m);

}  // namespace model
