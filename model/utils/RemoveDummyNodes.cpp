#include "model/utils/Optimizers.h"
#include "model/utils/TreeEdits.h"

namespace model::utils {

// A plain node has no transform of its own, so whatever hangs on it may hang on its parent.
std::uint64_t removeDummyNodes(Ptr<Node> root, const NodeHelpers& helpers) {
    std::vector<Ptr<Node>> dummies = collectNodes(
        root, [](const Node& node) { return node.nodeType() == NodeType::Node && hasLooseParent(node); });
    for (const Ptr<Node>& node : dummies) {
        // Earlier removals may have given the node a new parent, never none.
        Ptr<Node> parent = node->parent();
        helpers.replaceLinks(node, parent);
        removeFromTree(node, helpers);
    }
    return dummies.size();
}

std::uint64_t removeDeadEnds(Ptr<Node> root, const NodeHelpers& helpers) {
    std::vector<Ptr<Node>> ends = collectNodes(root, [&](Node& node) {
        return !node.hasChildren() && hasLooseParent(node) && !helpers.isLinked(Ptr<Node>(&node));
    });
    for (const Ptr<Node>& node : ends) {
        removeFromTree(node, helpers);
    }
    return ends.size();
}

}  // namespace model::utils
