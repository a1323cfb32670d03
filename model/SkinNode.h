#pragma once
// A render mesh deformed by bones.

#include "model/BaseMeshRenderNode.h"
#include "model/NodeClassMacros.h"
#include "model/SkinData.h"

namespace model {

class SkinNode : public BaseMeshRenderNode, public SkinData {
public:
    MODEL_NODE_CLASS(SkinNode)

    std::uint32_t linkCount() const override { return static_cast<std::uint32_t>(bones.size()); }
    Ptr<Node> link(std::uint32_t i) const override { return bone(i); }
    void setLink(std::uint32_t i, Ptr<Node> node) override { setBone(i, std::move(node)); }
    void forEachArgument(const std::function<void(std::uint32_t)>& f) const override {
        BaseNode::forEachArgument(f);
        reportArgument(f);
    }
};

}  // namespace model
