#pragma once
// Where a render node hangs in the tree, as far as merging cares: the tree tests of canMerge.

#include <unordered_map>
#include <vector>

#include "model/Node.h"

namespace model::utils {

// A LodNode above a tree node, and the child of the LodNode on the way down to it; the child is
// null when the tree node is the LodNode itself.
struct LodStep {
    const Node* lod = nullptr;
    const Node* branch = nullptr;
    bool operator==(const LodStep&) const = default;
};

// The context of a tree node p that a render node hangs on.
struct MergeContext {
    // The nearest ArgVisibilityNode at or above p, or null.
    const Node* visibility = nullptr;
    // A BillboardNode stands at or above p.
    bool billboard = false;
    // The LodNodes at or above p, from the top down, each with its branch towards p.
    std::vector<LodStep> lods;
};

// The tree tests of canMerge, as the description of merging words them.
// A BillboardNode stands at or above the node.
bool isUnderBillboard(const Node* node);
// Walking up from each of a and b, stopping before their lowest common ancestor C, an
// ArgVisibilityNode is met (the whole way up when there is no C).
bool visibilitySeparates(const Ptr<Node>& a, const Ptr<Node>& b);
// The lowest common ancestor of a and b is a LodNode.
bool lodSeparates(const Ptr<Node>& a, const Ptr<Node>& b);

// The same tests from contexts. Two nodes pass the visibility test exactly when their nearest
// visibility nodes are the same (or both absent): a visibility node below C on either side would be
// the nearest one of that side only. Their lowest common ancestor is a LodNode exactly when, at
// the deepest LodNode both lie under, they take different branches or one of them is that LodNode.
bool lodSeparates(const MergeContext& a, const MergeContext& b);

// Contexts of tree nodes, each computed once from its parent's.
class MergeContextCache {
public:
    const MergeContext& of(const Node* node);

private:
    MergeContext none_;
    std::unordered_map<const Node*, MergeContext> known_;
};

}  // namespace model::utils
