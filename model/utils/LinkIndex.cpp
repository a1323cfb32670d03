#include "model/utils/LinkIndex.h"

#include <algorithm>

namespace model::utils {

LinkIndex::LinkIndex(const RootNode& root) : users_(root.allUsers()) {
    for (std::uint32_t u = 0; u < users_.size(); ++u) {
        const BaseNode& user = *users_[u];
        for (std::uint32_t i = 0; i < user.linkCount(); ++i) {
            Entry entry{u, i};
            add(linkedNode(entry), entry);
        }
    }
}

const Node* LinkIndex::linkedNode(const Entry& entry) const {
    return users_[entry.user]->link(entry.link).get();
}

void LinkIndex::add(const Node* node, const Entry& entry) {
    if (node) {
        byNode_[node].push_back(entry);
    }
}

void LinkIndex::settle() {
    // Each handed-out list is walked once; the entries that moved go to their new node. An entry
    // that moves onto a node still waiting here is checked there again and stays.
    std::vector<const Node*> nodes;
    nodes.swap(handedOut_);
    for (const Node* node : nodes) {
        auto it = byNode_.find(node);
        if (it == byNode_.end()) {
            continue;
        }
        std::vector<Entry> moved;
        std::erase_if(it->second, [&](const Entry& e) {
            if (linkedNode(e) == node) {
                return false;
            }
            moved.push_back(e);
            return true;
        });
        if (it->second.empty()) {
            byNode_.erase(it);
        }
        for (const Entry& e : moved) {
            add(linkedNode(e), e);
        }
    }
}

bool LinkIndex::isLinked(const Node* node) {
    settle();
    return byNode_.contains(node);
}

std::vector<NodeLink> LinkIndex::linksOf(const Node* node) {
    settle();
    std::vector<NodeLink> result;
    auto it = byNode_.find(node);
    if (it == byNode_.end()) {
        return result;
    }
    std::vector<Entry>& entries = it->second;
    std::sort(entries.begin(), entries.end());
    result.reserve(entries.size());
    for (const Entry& e : entries) {
        result.push_back(NodeLink{e.link, users_[e.user]});
    }
    handedOut_.push_back(node);
    return result;
}

bool LinkIndex::replaceLinks(const Node* oldNode, const Ptr<Node>& newNode) {
    settle();
    auto it = byNode_.find(oldNode);
    if (it == byNode_.end()) {
        return false;
    }
    if (oldNode == newNode.get()) {
        for (const Entry& e : it->second) {
            users_[e.user]->setLink(e.link, newNode);
        }
        return true;
    }
    std::vector<Entry> entries = std::move(it->second);
    byNode_.erase(it);
    for (const Entry& e : entries) {
        users_[e.user]->setLink(e.link, newNode);
        add(newNode.get(), e);
    }
    return true;
}

void LinkIndex::fill(NodeHelpers& helpers) {
    helpers.replaceLinks = [this](const Ptr<Node>& oldNode, const Ptr<Node>& newNode) {
        return replaceLinks(oldNode.get(), newNode);
    };
    helpers.isLinked = [this](const Ptr<Node>& node) { return isLinked(node.get()); };
    helpers.linksOf = [this](const Ptr<Node>& node) { return linksOf(node.get()); };
}

}  // namespace model::utils
