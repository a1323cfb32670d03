#include "model/BaseNode.h"

#include <stdexcept>

#include "model/Node.h"

namespace model {

// The registry runs copy constructors under its lock, so a copy cannot make new properties
// through it: the copy shares the property objects, and replaces rather than edits them.
BaseNode::BaseNode(const BaseNode& other)
    : INode(other), version(other.version), name(other.name), properties(other.properties) {}

BaseNode& BaseNode::operator=(const BaseNode& other) {
    INode::operator=(other);
    version = other.version;
    name = other.name;
    properties = other.properties;
    return *this;
}

Ptr<Node> BaseNode::link(std::uint32_t) const {
    return {};
}

void BaseNode::setLink(std::uint32_t, Ptr<Node>) {}

bool BaseNode::applyTransform(std::uint32_t, const nq::Matrixd&) {
    return false;
}

void BaseNode::checkLink(std::uint32_t i, std::size_t count) {
    if (i >= count) {
        throw std::out_of_range("invalid link number");
    }
}

void BaseNode::forEachArgument(const std::function<void(std::uint32_t)>& f) const {
    model::forEachArgument(properties, f);
}

}  // namespace model
