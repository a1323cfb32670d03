#include "model/utils/MergeContext.h"

#include <algorithm>

namespace model::utils {

namespace {

bool isType(const Node* node, NodeType type) {
    return node && node->nodeType() == type;
}

}  // namespace

bool isUnderBillboard(const Node* node) {
    for (const Node* n = node; n; n = n->parent().get()) {
        if (isType(n, NodeType::BillboardNode)) {
            return true;
        }
    }
    return false;
}

bool visibilitySeparates(const Ptr<Node>& a, const Ptr<Node>& b) {
    Ptr<Node> common = Node::commonAncestor(a, b);
    auto metBelowCommon = [&](const Ptr<Node>& from) {
        for (const Node* n = from.get(); n && n != common.get(); n = n->parent().get()) {
            if (isType(n, NodeType::ArgVisibilityNode)) {
                return true;
            }
        }
        return false;
    };
    return metBelowCommon(a) || metBelowCommon(b);
}

bool lodSeparates(const Ptr<Node>& a, const Ptr<Node>& b) {
    return isType(Node::commonAncestor(a, b).get(), NodeType::LodNode);
}

bool lodSeparates(const MergeContext& a, const MergeContext& b) {
    std::size_t shared = std::min(a.lods.size(), b.lods.size());
    for (std::size_t i = 0; i < shared; ++i) {
        const LodStep& x = a.lods[i];
        const LodStep& y = b.lods[i];
        if (x.lod != y.lod) {
            return false;
        }
        if (x.branch != y.branch || !x.branch) {
            return true;
        }
    }
    return false;
}

const MergeContext& MergeContextCache::of(const Node* node) {
    if (!node) {
        return none_;
    }
    if (auto it = known_.find(node); it != known_.end()) {
        return it->second;
    }
    std::vector<const Node*> path;
    const Node* parent = node;
    while (parent && !known_.contains(parent)) {
        path.push_back(parent);
        parent = parent->parent().get();
    }
    const MergeContext* above = parent ? &known_.at(parent) : &none_;
    for (auto it = path.rbegin(); it != path.rend(); ++it) {
        const Node* n = *it;
        MergeContext context;
        context.visibility = isType(n, NodeType::ArgVisibilityNode) ? n : above->visibility;
        context.billboard = isType(n, NodeType::BillboardNode) || above->billboard;
        context.lods = above->lods;
        if (isType(parent, NodeType::LodNode)) {
            context.lods.back().branch = n;
        }
        if (isType(n, NodeType::LodNode)) {
            context.lods.push_back({n, nullptr});
        }
        above = &known_.emplace(n, std::move(context)).first->second;
        parent = n;
    }
    return *above;
}

}  // namespace model::utils
