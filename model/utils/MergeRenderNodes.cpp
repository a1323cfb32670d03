#include "model/utils/MergeRenderNodes.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "model/utils/MergeGroups.h"
#include "model/utils/RemoveEmptyNodes.h"
#include "model/utils/UnifyEqualProperties.h"

namespace model::utils {

std::vector<Ptr<BaseRenderNode>> nodesOfKind(const RootNode& root, MergeKind kind) {
    NodeType type = nodeTypeOf(kind);
    std::vector<Ptr<BaseRenderNode>> nodes;
    std::unordered_set<const BaseRenderNode*> taken;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        if (node->nodeType() == type && taken.insert(node.get()).second) {
            nodes.push_back(node);
        }
    }
    return nodes;
}

void applyMergeLists(RootNode& root, const std::vector<Ptr<BaseRenderNode>>& removeList,
                     const std::vector<Ptr<BaseRenderNode>>& addList) {
    std::vector<Ptr<BaseRenderNode>> list = root.renderNodes();
    std::unordered_map<const BaseRenderNode*, std::size_t> position;
    position.reserve(list.size());
    bool repeated = false;
    for (std::size_t i = 0; i < list.size() && !repeated; ++i) {
        repeated = !position.try_emplace(list[i].get(), i).second;
    }
    for (const Ptr<BaseRenderNode>& node : removeList) {
        std::size_t i = 0;
        if (repeated) {
            // A node that stands twice: the first place that holds it, as a search finds it.
            i = static_cast<std::size_t>(std::find(list.begin(), list.end(), node) - list.begin());
        } else if (auto it = position.find(node.get()); it != position.end()) {
            i = it->second;
            position.erase(it);
        } else {
            i = list.size();
        }
        if (i == list.size()) {
            continue;
        }
        if (i != list.size() - 1) {
            list[i] = std::move(list.back());
            if (!repeated) {
                position[list[i].get()] = i;
            }
        }
        list.pop_back();
    }
    for (const Ptr<BaseRenderNode>& node : removeList) {
        node->root = nullptr;
    }
    list.insert(list.end(), addList.begin(), addList.end());
    root.setRenderNodes(std::move(list));
}

MergeCounters mergeRenderNodes(RootNode& root) {
    removeEmptyRenderNodes(root);
    unifyEqualProperties(root);
    MergeCounters counters;
    std::vector<Ptr<BaseRenderNode>> removeList;
    std::vector<Ptr<BaseRenderNode>> addList;
    for (MergeKind kind : kMergeKinds) {
        for (const MergeGroup& group : groupForMerge(kind, nodesOfKind(root, kind), counters)) {
            removeList.insert(removeList.end(), group.begin(), group.end());
            addList.push_back(mergeMembers(kind, group));
        }
    }
    applyMergeLists(root, removeList, addList);
    removeEmptyRenderNodes(root);
    removeEmptyShellNodes(root);
    return counters;
}

}  // namespace model::utils
