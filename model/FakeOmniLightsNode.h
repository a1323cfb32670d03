#pragma once
// Fake omni lights: sprites that shine alike in every direction, on one or more tree nodes.

#include <vector>

#include "model/BaseRenderNode.h"
#include "model/FakeLights.h"
#include "model/NodeClassMacros.h"

namespace model {

class FakeOmniLightsNode : public BaseRenderNode {
public:
    MODEL_NODE_CLASS(FakeOmniLightsNode)

    std::uint32_t linkCount() const override { return static_cast<std::uint32_t>(links.size()); }
    Ptr<Node> link(std::uint32_t i) const override { return linkIn(links, i); }
    void setLink(std::uint32_t i, Ptr<Node> node) override { linkIn(links, i) = std::move(node); }
    // Moves the lights of that parent. Only a rotation with a uniform scale keeps a round sprite
    // round, so any other matrix is refused; the sizes take the scale.
    bool applyTransform(std::uint32_t link, const nq::Matrixd& m) override;

    std::vector<Ptr<Node>> links;
    std::vector<FakeOmniLight> lights;
};

}  // namespace model
