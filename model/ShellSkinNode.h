#pragma once
// A collision mesh deformed by bones. Its links are its bones; its vertices are in the bones'
// space, so no static matrix can be baked into them.

#include "model/NodeClassMacros.h"
#include "model/ShellNode.h"
#include "model/SkinData.h"

namespace model {

class ShellSkinNode : public ShellNode, public SkinData {
public:
    MODEL_NODE_CLASS(ShellSkinNode)

    std::uint32_t linkCount() const override { return static_cast<std::uint32_t>(bones.size()); }
    Ptr<Node> link(std::uint32_t i) const override { return bone(i); }
    void setLink(std::uint32_t i, Ptr<Node> node) override { setBone(i, std::move(node)); }
    bool applyTransform(std::uint32_t, const nq::Matrixd&) override { return false; }
    void forEachArgument(const std::function<void(std::uint32_t)>& f) const override {
        BaseNode::forEachArgument(f);
        reportArgument(f);
    }
};

}  // namespace model
