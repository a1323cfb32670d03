#pragma once
// Merging a group of render nodes into one node.

#include <span>

#include "model/BaseRenderNode.h"
#include "model/utils/MergeGrouping.h"

namespace model::utils {

// One node for the group's members, in their order. A group of one gives its member unchanged.
// Otherwise a new node of the kind's class gets the first member's material, user properties and
// class version (render nodes also its render option), and no name:
// - render and number nodes: the first member's mesh, then each further member's: its parent entry
//   is looked up in the joined parent list (same tree node and argument) or appended; its indices
//   are moved past the vertices so far; in its POSITION0 of four floats each vertex whose fourth
//   float rounds to 0 is tagged with the parent entry's number. A member whose vertex layout does
//   not fit the first one's fails with nq::ExtException "Wrong vertex size.". Number nodes also
//   join the digit entries of each parent;
// - fake lights: the parent lists are joined with equal entries folded, and each light is copied
//   with its parent number changed to the joined one; spot lights also join their directions.
Ptr<BaseRenderNode> mergeMembers(MergeKind kind, std::span<const Ptr<BaseRenderNode>> members);

}  // namespace model::utils
