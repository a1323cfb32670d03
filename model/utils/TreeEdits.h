#pragma once
// Small tree edits shared by the optimiser passes.

#include <cstdint>
#include <vector>

#include "model/Node.h"
#include "model/utils/NodeHelpers.h"

namespace model::utils {

// The identity test of the passes: every element within 1e-5 taken as a single-precision value.
inline bool isNearIdentity(const nq::Matrixd& m) {
    return m.isIdentity(static_cast<double>(1e-5f));
}

// Calls f on every node of the tree under root, pre-order, as Node::visit does with a predicate
// that is always true, but over plain pointers: a pass walks the whole tree several times per
// round, and touching no reference count keeps those walks read-only. f must not change the tree.
template <class F>
void forEachNode(Node& root, F f) {
    Node* node = &root;
    while (true) {
        f(*node);
        if (Node* child = node->firstChild().get()) {
            node = child;
            continue;
        }
        while (node != &root && !node->nextSibling()) {
            node = node->parent().get();
        }
        if (node == &root) {
            return;
        }
        node = node->nextSibling().get();
    }
}

// Every node of the tree under root, pre-order, that the filter accepts.
template <class Filter>
std::vector<Ptr<Node>> collectNodes(const Ptr<Node>& root, Filter filter) {
    std::vector<Ptr<Node>> found;
    if (root) {
        forEachNode(*root, [&](Node& node) {
            if (filter(node)) {
                found.emplace_back(&node);
            }
        });
    }
    return found;
}

// True if the node has a parent whose children may be removed, added or replaced.
inline bool hasLooseParent(const Node& node) {
    return node.parent() && !node.parent()->hasFixedChildren();
}

// Moves every child of from, in order, to the end of to's children.
void moveChildrenTo(const Ptr<Node>& from, const Ptr<Node>& to);

// Takes the node out of the tree: its children, in order, go under its parent in its place, and
// the node is deleted. Nothing happens to a node without a parent.
void removeFromTree(const Ptr<Node>& node, const NodeHelpers& helpers);

}  // namespace model::utils
