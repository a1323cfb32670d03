#pragma once
// Merging the render nodes that share a material and a visibility context into one node each, so
// that the file's reader makes fewer draw calls.

#include <vector>

#include "model/RootNode.h"
#include "model/utils/MergeCounters.h"
#include "model/utils/MergeGrouping.h"

namespace model::utils {

// The nodes of the render list of the kind's exact class, in list order, each once.
std::vector<Ptr<BaseRenderNode>> nodesOfKind(const RootNode& root, MergeKind kind);

// Takes each node of removeList out of the render list (by pointer: the vacated place is filled by
// the last element) and then appends each node of addList, setting its root. The nodes taken out
// and not put back lose their root.
void applyMergeLists(RootNode& root, const std::vector<Ptr<BaseRenderNode>>& removeList,
                     const std::vector<Ptr<BaseRenderNode>>& addList);

// removeEmptyRenderNodes and unifyEqualProperties; then for each kind in order the groups of
// groupForMerge, each merged by mergeMembers, with all members on the remove list and the results
// on the add list; applyMergeLists; removeEmptyRenderNodes and removeEmptyShellNodes. Returns the
// rejection counters of all tests.
MergeCounters mergeRenderNodes(RootNode& root);

}  // namespace model::utils
