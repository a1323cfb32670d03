#pragma once
// The callables through which the tree optimisers reach the model around the tree: deleting a
// node, re-pointing users, replacing the tree root and asking what hangs where. A pass uses
// nothing else of the root, so the same pass runs over any way of answering the link questions.

#include <functional>
#include <vector>

#include "model/Node.h"
#include "model/RootNode.h"

namespace model::utils {

struct NodeHelpers {
    // Detaches the node from its parent, if any, and keeps it alive to the end of the run.
    std::function<void(const Ptr<Node>& node)> deleteNode;
    // Sets every user link equal to oldNode to newNode; true if any was changed.
    std::function<bool(const Ptr<Node>& oldNode, const Ptr<Node>& newNode)> replaceLinks;
    // Makes the node the tree root.
    std::function<void(const Ptr<Node>& node)> setRoot;
    // True if any link of any user equals the node.
    std::function<bool(const Ptr<Node>& node)> isLinked;
    // Every (link number, user) on the node: users in the order connectors, lights, shells,
    // render nodes, and within a user by ascending link number.
    std::function<std::vector<NodeLink>(const Ptr<Node>& node)> linksOf;
};

}  // namespace model::utils
