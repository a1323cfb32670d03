#pragma once
// Fake spot lights whose light data is held as vertices. The layout of that data is the
// renderer's, so no matrix is baked into it.

#include <vector>

#include "model/BaseRenderNode.h"
#include "model/NodeClassMacros.h"
#include "model/Vertices.h"

namespace model {

class FakeSpotLights3Node : public BaseRenderNode {
public:
    MODEL_NODE_CLASS(FakeSpotLights3Node)

    std::uint32_t linkCount() const override { return static_cast<std::uint32_t>(links.size()); }
    Ptr<Node> link(std::uint32_t i) const override { return linkIn(links, i); }
    void setLink(std::uint32_t i, Ptr<Node> node) override { linkIn(links, i) = std::move(node); }

    std::vector<Ptr<Node>> links;
    Vertices lightData;
};

}  // namespace model
