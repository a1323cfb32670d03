#include "model/Node.h"

#include <algorithm>

#include "model/Property.h"

namespace model {

void Node::worldTransform(const IModelArguments& arguments, nq::Matrixd& m) const {
    if (parent()) {
        parent()->worldTransform(arguments, m);
    }
}

void Node::visibility(const IModelArguments& arguments, const Node*, bool& visible) const {
    if (visible && parent()) {
        parent()->visibility(arguments, this, visible);
    }
}

nq::Matrixd Node::pushTransform(nq::Matrixd&, const nq::Matrixd& m, bool) {
    return m;
}

void Node::forEachArgument(const std::function<void(std::uint32_t)>& f) const {
    model::forEachArgument(properties, f);
}

void Node::visit(const Predicate& predicate) {
    // An explicit stack, so a deep tree cannot exhaust the call stack.
    std::vector<Ptr<Node>> stack{Ptr<Node>(this)};
    while (!stack.empty()) {
        Ptr<Node> node = std::move(stack.back());
        stack.pop_back();
        if (!predicate(node)) {
            continue;
        }
        std::size_t first = stack.size();
        for (Node* c = node->firstChild().get(); c; c = c->nextSibling().get()) {
            stack.push_back(Ptr<Node>(c));
        }
        std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(first), stack.end());
    }
}

void Node::visitAncestors(const Predicate& predicate) {
    for (Ptr<Node> node(this); node; node = node->parent()) {
        if (!predicate(node)) {
            return;
        }
    }
}

std::vector<Ptr<Node>> Node::ancestors() {
    std::vector<Ptr<Node>> result;
    for (Ptr<Node> node(this); node; node = node->parent()) {
        result.push_back(node);
    }
    return result;
}

Ptr<Node> Node::commonAncestor(const Ptr<Node>& a, const Ptr<Node>& b) {
    if (!a || !b) {
        return {};
    }
    std::vector<Ptr<Node>> fromB = b->ancestors();
    for (const Ptr<Node>& candidate : a->ancestors()) {
        if (std::find(fromB.begin(), fromB.end(), candidate) != fromB.end()) {
            return candidate;
        }
    }
    return {};
}

void Node::setVersion(std::uint32_t value) {
    static constexpr const char* kVersionName = "__VERSION__";
    std::uint32_t stored = 0;
    if (getProperty(properties, kVersionName, stored) && stored == value) {
        return;
    }
    // Made directly rather than through the registry: constructors call this, and the registry
    // runs constructors under its lock.
    setProperty(properties, Ptr<IProperty>(new UIntProperty(kVersionName, value)));
}

}  // namespace model
