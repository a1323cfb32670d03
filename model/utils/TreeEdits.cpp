#include "model/utils/TreeEdits.h"

namespace model::utils {

void moveChildrenTo(const Ptr<Node>& from, const Ptr<Node>& to) {
    for (const Ptr<Node>& child : from->children()) {
        to->append(child);
    }
}

void removeFromTree(const Ptr<Node>& node, const NodeHelpers& helpers) {
    Ptr<Node> parent = node->parent();
    if (!parent) {
        return;
    }
    for (const Ptr<Node>& child : node->children()) {
        parent->insert(node, child);
    }
    helpers.deleteNode(node);
}

}  // namespace model::utils
