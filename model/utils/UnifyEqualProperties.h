#pragma once
// One material object for render nodes whose materials are equal.

#include <cstddef>

#include "model/BaseMaterial.h"
#include "model/PropertiesSet.h"
#include "model/RootNode.h"

namespace model::utils {

// Material equality for merging, in this order, false at the first difference: name, blending,
// vertex format, texture coordinate channels, material name, depth bias and the two shadow flags,
// decal and the three billboard fields, the 19 texture slots (two unused slots are equal whatever
// else they hold), the uniforms as sets.
bool areEqual(const PropertiesSet& a, const PropertiesSet& b);

// areEqual for two materials of render nodes; false unless both are PropertiesSet.
bool areEqualMaterials(const BaseMaterial* a, const BaseMaterial* b);

// A hash of the fields that areEqual compares exactly, so that materials it finds equal always
// have the same hash. The texture matrices and the uniform values, compared within a tolerance,
// take no part; of the uniforms only their number does. A material that is not a PropertiesSet
// hashes by its address.
std::size_t materialHash(const BaseMaterial* material);

// Walks the render list keeping the materials seen; a node whose material equals a seen one (by
// areEqual against the seen ones in the order they were seen) gets the seen one instead, as does
// every later node with the same duplicate. Then checks that no two render nodes, the earlier one
// first, hold different materials that areEqual, failing with nq::ExtException "There is still
// equal properties sets." otherwise. Returns whether the number of distinct materials changed.
// Only materials of equal materialHash are ever compared.
bool unifyEqualProperties(RootNode& root);

}  // namespace model::utils
