#pragma once
// Fake spot lights: sprites that shine towards a direction. From class version 2 on, each light
// also has a direction of its own.

#include <vector>

#include "model/BaseRenderNode.h"
#include "model/FakeLights.h"
#include "model/NodeClassMacros.h"

namespace model {

struct FakeSpotLink {
    Ptr<Node> node;
    osg::Vec3f direction;
};

class FakeSpotLightsNode : public BaseRenderNode {
public:
    MODEL_NODE_CLASS(FakeSpotLightsNode)

    std::uint32_t linkCount() const override { return static_cast<std::uint32_t>(links.size()); }
    Ptr<Node> link(std::uint32_t i) const override { return linkIn(links, i).node; }
    void setLink(std::uint32_t i, Ptr<Node> node) override { linkIn(links, i).node = std::move(node); }
    // As for omni lights; the parent's direction and the lights' own directions turn with m and
    // take its scale, as they would have had m been part of the matrix they were made with.
    bool applyTransform(std::uint32_t link, const nq::Matrixd& m) override;

    std::vector<FakeSpotLink> links;
    std::vector<FakeSpotLight> lights;
    // One per light, written from class version 2 on.
    std::vector<osg::Vec3f> directions;
};

}  // namespace model
