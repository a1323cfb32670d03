#pragma once
// The base of everything in the root's shell list: collision data on one tree node.

#include "model/BaseNode.h"

namespace model {

class BaseShellNode : public BaseNode {
public:
    std::uint32_t linkCount() const override { return 1; }
    Ptr<Node> link(std::uint32_t i) const override { return linkIn(std::span(&controlNode, 1), i); }
    void setLink(std::uint32_t i, Ptr<Node> node) override {
        linkIn(std::span(&controlNode, 1), i) = std::move(node);
    }

    // True when the node holds nothing to collide with.
    virtual bool isEmpty() const = 0;

    Ptr<Node> controlNode;
};

}  // namespace model
