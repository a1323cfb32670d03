#include <algorithm>
#include <utility>

#include "model/ArgAnimatedBone.h"
#include "model/ArgVisibilityNode.h"
#include "model/Bone.h"
#include "model/NodeCreators.h"
#include "model/utils/Optimizers.h"
#include "model/utils/TreeEdits.h"

namespace model::utils {

namespace {

Ptr<Node> plainNode(const std::string& name) {
    return createNode(name);
}

Ptr<Node> staticTransform(const std::string& name, const nq::Matrixd& m) {
    if (isNearIdentity(m)) {
        return plainNode(name);
    }
    return createTransformNode(name, m);
}

// What takes the node's place, or empty when the node keeps it.
Ptr<Node> replacementFor(Node& node) {
    switch (node.nodeType()) {
        case NodeType::TransformNode: {
            auto& t = static_cast<TransformNode&>(node);
            return isNearIdentity(t.matrix) ? plainNode(t.name) : Ptr<Node>();
        }
        case NodeType::ArgVisibilityNode: {
            auto& v = static_cast<ArgVisibilityNode&>(node);
            bool noKeys = std::all_of(v.entries.begin(), v.entries.end(),
                                      [](const VisibilityEntry& e) { return e.ranges.empty(); });
            return noKeys ? plainNode(v.name) : Ptr<Node>();
        }
        case NodeType::ArgAnimationNode: {
            auto& a = static_cast<ArgAnimationNode&>(node);
            return a.isVoid() ? staticTransform(a.name, a.restMatrix()) : Ptr<Node>();
        }
        case NodeType::ArgAnimatedBone: {
            auto& a = static_cast<ArgAnimatedBone&>(node);
            if (!a.isVoid()) {
                return {};
            }
            Ptr<Bone> bone = createNodeAs<Bone>(nodeTypeName(NodeType::Bone));
            bone->name = a.name;
            bone->matrix = a.restMatrix();
            bone->boneMatrix = a.boneMatrix;
            return bone;
        }
        default:
            return {};
    }
}

}  // namespace

std::uint64_t replaceEmptyNodes(Ptr<Node> root, const NodeHelpers& helpers) {
    std::vector<std::pair<Ptr<Node>, Ptr<Node>>> pairs;
    forEachNode(*root, [&](Node& node) {
        if (Ptr<Node> replacement = replacementFor(node)) {
            pairs.emplace_back(Ptr<Node>(&node), std::move(replacement));
        }
    });
    for (const auto& [oldNode, newNode] : pairs) {
        helpers.replaceLinks(oldNode, newNode);
        moveChildrenTo(oldNode, newNode);
        if (Ptr<Node> parent = oldNode->parent()) {
            parent->insert(oldNode, newNode);
        } else {
            helpers.setRoot(newNode);
        }
        helpers.deleteNode(oldNode);
    }
    return pairs.size();
}

}  // namespace model::utils
