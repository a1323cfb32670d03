#include "model/RootNode.h"

#include <algorithm>
#include <functional>
#include <unordered_set>

#include "model/IBone.h"

namespace model {

namespace {

template <class T>
void addTo(std::vector<Ptr<T>>& list, Ptr<T> node, RootNode* root) {
    if (node) {
        node->root = root;
        list.push_back(std::move(node));
    }
}

template <class T>
bool removeFrom(std::vector<Ptr<T>>& list, const T* node) {
    auto it = std::find_if(list.begin(), list.end(), [&](const Ptr<T>& p) { return p.get() == node; });
    if (it == list.end()) {
        return false;
    }
    (*it)->root = nullptr;
    if (it != list.end() - 1) {
        *it = std::move(list.back());
    }
    list.pop_back();
    return true;
}

template <class T>
void appendUsers(std::vector<Ptr<BaseNode>>& out, const std::vector<Ptr<T>>& list) {
    out.insert(out.end(), list.begin(), list.end());
}

// The node and all its descendants, without recursion.
void gatherSubtree(const Ptr<Node>& top, std::unordered_set<Node*>& seen, std::vector<Ptr<Node>>& out) {
    std::vector<Ptr<Node>> stack{top};
    while (!stack.empty()) {
        Ptr<Node> node = std::move(stack.back());
        stack.pop_back();
        if (!seen.insert(node.get()).second) {
            continue;
        }
        for (Node* c = node->firstChild().get(); c; c = c->nextSibling().get()) {
            stack.push_back(Ptr<Node>(c));
        }
        out.push_back(std::move(node));
    }
}

}  // namespace

std::set<std::uint32_t> getArgumentsList(const Ptr<Node>& tree) {
    std::set<std::uint32_t> arguments;
    if (tree) {
        tree->visit([&](const Ptr<Node>& node) {
            node->forEachArgument([&](std::uint32_t a) { arguments.insert(a); });
            return true;
        });
    }
    return arguments;
}

RootNode::RootNode() {
    version = 3;
}

RootNode::RootNode(const RootNode& other)
    : BaseNode(other),
      flags(other.flags),
      boundingBox(other.boundingBox),
      userBox(other.userBox),
      lightBox(other.lightBox) {}

RootNode::~RootNode() {
    // The tree, and any detached part of one that a user still links to, is gathered first;
    // then every node drops its upward and sideways links, which leaves no cycle.
    std::unordered_set<Node*> seen;
    std::vector<Ptr<Node>> nodes;
    std::vector<Ptr<Node>> tops;
    if (tree_) {
        tops.push_back(tree_);
    }
    for (const Ptr<BaseNode>& user : allUsers()) {
        for (std::uint32_t i = 0; i < user->linkCount(); ++i) {
            Ptr<Node> top = user->link(i);
            while (top && top->parent()) {
                top = top->parent();
            }
            if (top) {
                tops.push_back(std::move(top));
            }
        }
    }
    for (const Ptr<Node>& top : tops) {
        gatherSubtree(top, seen, nodes);
    }
    tops.clear();
    for (const Ptr<Node>& node : nodes) {
        node->breakCycles();
    }
    // Each node comes after its parent in the array. Released front to back, a node dies while
    // the array still holds its children, so no release cascades down a long chain.
    tree_.reset();
    for (Ptr<Node>& node : nodes) {
        node.reset();
    }
}

void RootNode::addConnector(Ptr<Connector> node) {
    addTo(connectors_, std::move(node), this);
}
void RootNode::addRenderNode(Ptr<BaseRenderNode> node) {
    addTo(renderNodes_, std::move(node), this);
}
void RootNode::addShellNode(Ptr<BaseShellNode> node) {
    addTo(shellNodes_, std::move(node), this);
}
void RootNode::addLightNode(Ptr<LightNode> node) {
    addTo(lightNodes_, std::move(node), this);
}

bool RootNode::removeConnector(const Connector* node) {
    return removeFrom(connectors_, node);
}
bool RootNode::removeRenderNode(const BaseRenderNode* node) {
    return removeFrom(renderNodes_, node);
}
bool RootNode::removeShellNode(const BaseShellNode* node) {
    return removeFrom(shellNodes_, node);
}
bool RootNode::removeLightNode(const LightNode* node) {
    return removeFrom(lightNodes_, node);
}

void RootNode::setRenderNodes(std::vector<Ptr<BaseRenderNode>> nodes) {
    renderNodes_.clear();
    for (Ptr<BaseRenderNode>& node : nodes) {
        addTo(renderNodes_, std::move(node), this);
    }
}

void RootNode::setShellNodes(std::vector<Ptr<BaseShellNode>> nodes) {
    shellNodes_.clear();
    for (Ptr<BaseShellNode>& node : nodes) {
        addTo(shellNodes_, std::move(node), this);
    }
}

std::vector<Ptr<BaseNode>> RootNode::allUsers() const {
    std::vector<Ptr<BaseNode>> users;
    users.reserve(connectors_.size() + lightNodes_.size() + shellNodes_.size() + renderNodes_.size());
    appendUsers(users, connectors_);
    appendUsers(users, lightNodes_);
    appendUsers(users, shellNodes_);
    appendUsers(users, renderNodes_);
    return users;
}

// A walk over every link of every user per call. An index would make these cheaper; they are the
// only way in, so one can take their place without changing callers.
std::vector<NodeLink> RootNode::linksOf(const Node* node) const {
    std::vector<NodeLink> result;
    for (const Ptr<BaseNode>& user : allUsers()) {
        for (std::uint32_t i = 0; i < user->linkCount(); ++i) {
            if (user->link(i).get() == node) {
                result.push_back(NodeLink{i, user});
            }
        }
    }
    return result;
}

bool RootNode::isLinked(const Node* node) const {
    for (const Ptr<BaseNode>& user : allUsers()) {
        for (std::uint32_t i = 0; i < user->linkCount(); ++i) {
            if (user->link(i).get() == node) {
                return true;
            }
        }
    }
    return false;
}

bool RootNode::replaceLinks(const Node* oldNode, const Ptr<Node>& newNode) {
    bool changed = false;
    for (const NodeLink& l : linksOf(oldNode)) {
        l.user->setLink(l.link, newNode);
        changed = true;
    }
    return changed;
}

void RootNode::collectMaterials() {
    materials.clear();
    for (const Ptr<BaseRenderNode>& node : renderNodes_) {
        const MaterialPtr& material = node->material;
        if (material && std::find(materials.begin(), materials.end(), material) == materials.end()) {
            materials.push_back(material);
        }
    }
}

int RootNode::materialIndex(const BaseMaterial* material) const {
    for (std::size_t i = 0; i < materials.size(); ++i) {
        if (materials[i].get() == material) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

bool RootNode::hasBones() const {
    bool found = false;
    if (tree_) {
        tree_->visit([&](const Ptr<Node>& node) {
            found = found || dynamic_cast<const IBone*>(node.get()) != nullptr;
            return !found;
        });
    }
    return found;
}

std::uint32_t RootNode::calcNumHandles() const {
    // Only the highest argument counts. The walk goes over plain pointers: it changes nothing,
    // and a save calls it on trees of any size.
    bool any = false;
    std::uint32_t highest = 0;
    const std::function<void(std::uint32_t)> note = [&](std::uint32_t a) {
        highest = any && highest > a ? highest : a;
        any = true;
    };
    std::vector<const Node*> stack;
    if (tree_) {
        stack.push_back(tree_.get());
    }
    while (!stack.empty()) {
        const Node* node = stack.back();
        stack.pop_back();
        node->forEachArgument(note);
        for (const Node* c = node->firstChild().get(); c; c = c->nextSibling().get()) {
            stack.push_back(c);
        }
    }
    auto collect = [&](const auto& list) {
        for (const auto& node : list) {
            node->forEachArgument(note);
        }
    };
    collect(connectors_);
    collect(renderNodes_);
    collect(lightNodes_);
    collect(shellNodes_);
    return any ? highest + 1 : 0;
}

}  // namespace model
