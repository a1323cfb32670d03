#pragma once
// The tree optimisers: passes that fold the node tree down before it is written. They delete
// what nothing needs, replace nodes whose animation is void by cheaper ones, and bake static
// transforms into the data of whatever hangs on them.

#include <cstdint>
#include <vector>

#include "model/Node.h"
#include "model/RootNode.h"
#include "model/utils/NodeHelpers.h"

namespace model {

// Runs the passes until a round changes nothing; every node taken out of the tree is then named
// "_DELETED_".
void optimizeTransformations(RootNode* root);

// Multiplies every key time of the tree's animation and visibility nodes by factor, in place.
void rescaleAnimationKeys(Ptr<Node> root, double factor);

}  // namespace model

namespace model::utils {

// Each pass collects from the current tree root first and edits afterwards. Each returns the
// number of changes it made.

// Identity transforms, visibility nodes without keys and animation without keys become plain
// nodes, static transforms or static bones.
std::uint64_t replaceEmptyNodes(Ptr<Node> root, const NodeHelpers& helpers);
// Removes plain nodes (exactly of class Node) that have a parent; their users go to the parent.
std::uint64_t removeDummyNodes(Ptr<Node> root, const NodeHelpers& helpers);
// Removes childless nodes that nothing links to, one level per call.
std::uint64_t removeDeadEnds(Ptr<Node> root, const NodeHelpers& helpers);

// What one round of the main loop changed, pass by pass.
struct OptimizerRound {
    std::uint64_t emptyNodes = 0;
    std::uint64_t dummyNodes = 0;
    std::uint64_t deadEnds = 0;
    std::uint64_t transforms = 0;
    // The repeated dead-end removal after moving transforms, summed over its calls.
    std::uint64_t moreDeadEnds = 0;
    bool operator==(const OptimizerRound&) const = default;
};

// The main loop of optimizeTransformations, over link questions answered by linkHelpers (its
// replaceLinks, isLinked and linksOf members); deleteNode and setRoot are made here. Returns the
// counts of every round, the last one all zeros.
std::vector<OptimizerRound> optimizeTransformations(RootNode& root, NodeHelpers linkHelpers);

}  // namespace model::utils
