#pragma once
// A named attachment point on a tree node.

#include "model/BaseNode.h"
#include "model/NodeClassMacros.h"

namespace model {

class Connector : public BaseNode {
public:
    MODEL_NODE_CLASS(Connector)

    std::uint32_t linkCount() const override { return 1; }
    Ptr<Node> link(std::uint32_t i) const override { return linkIn(std::span(&controlNode, 1), i); }
    void setLink(std::uint32_t i, Ptr<Node> node) override {
        linkIn(std::span(&controlNode, 1), i) = std::move(node);
    }

    Ptr<Node> controlNode;
};

}  // namespace model
