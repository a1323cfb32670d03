#pragma once
// Grouping the render nodes of one kind into groups that merge.

#include <vector>

#include "model/BaseRenderNode.h"
#include "model/NodeType.h"
#include "model/utils/MergeCounters.h"

namespace model::utils {

// The node classes that merge, each with its own test and merge; in the order they are merged.
enum class MergeKind { RenderNode, FakeOmniLights, FakeSpotLights, Number };
inline constexpr MergeKind kMergeKinds[] = {MergeKind::RenderNode, MergeKind::FakeOmniLights,
                                            MergeKind::FakeSpotLights, MergeKind::Number};

// The exact class that takes part in a kind's merge: subclasses (skins, animated fake lights) do
// not.
NodeType nodeTypeOf(MergeKind kind);

// canMerge for two nodes of the kind's class: a is the key node of a group, b the node placed.
bool canMergeAs(MergeKind kind, const BaseRenderNode& a, const BaseRenderNode& b, MergeCounters& counters);

// A group: its key node (the first node placed in it) first, then the others in list order.
using MergeGroup = std::vector<Ptr<BaseRenderNode>>;

// Places each node, in order, into the first group, in the order the groups were opened, whose key
// node accepts it (canMergeAs(kind, key, node)), or opens a new group. The counters get exactly
// what those tests add: one rejection for each group tested before the one that accepts.
//
// Rather than testing every group, the groups are indexed by what the tests compare exactly
// (material, property classes and names, primitive, billboard, nearest visibility node), the
// rejections of whole index entries are counted at once, and only the groups of the node's own
// entry meet the level-of-detail and spot-shape tests one by one. The nodes are of the kind's
// class, each once.
std::vector<MergeGroup> groupForMerge(MergeKind kind, const std::vector<Ptr<BaseRenderNode>>& nodes,
                                      MergeCounters& counters);

}  // namespace model::utils
