#pragma once
// A light source on a tree node: omni or spot, with properties that may be animated.

#include <cstdint>

#include "model/BaseNode.h"
#include "model/NodeClassMacros.h"
#include "model/Texture.h"

namespace model {

class LightNode : public BaseNode {
public:
    static constexpr std::uint8_t kOmni = 0;
    static constexpr std::uint8_t kSpot = 1;
    // The kind of a light without volume settings.
    static constexpr std::uint8_t kDefaultKind = 4;
    // The class version of a light with volume settings.
    static constexpr std::uint32_t kVolumeVersion = 3;

    MODEL_NODE_CLASS(LightNode)

    std::uint32_t linkCount() const override { return 1; }
    Ptr<Node> link(std::uint32_t i) const override { return linkIn(std::span(&controlNode, 1), i); }
    void setLink(std::uint32_t i, Ptr<Node> node) override {
        linkIn(std::span(&controlNode, 1), i) = std::move(node);
    }
    // The node's properties, the animated light properties, and the texture's argument.
    void forEachArgument(const std::function<void(std::uint32_t)>& f) const override;

    // The volume setters keep the defaults out of the record: a constant 0.0 radius factor or
    // near distance, a constant 1.0 density factor and the kind 4 are ignored. Anything else is
    // stored and raises the class version to 3.
    void setRadiusFactor(Ptr<IProperty> property);
    void setDensityFactor(Ptr<IProperty> property);
    void setNearDistance(Ptr<IProperty> property);
    void setLightKind(std::uint8_t kind);

    bool hasTexture() const { return !texture.empty(); }

    Ptr<Node> controlNode;
    // kOmni or kSpot.
    std::uint8_t lightFlag = kOmni;
    Ptr<IProperty> color;
    Ptr<IProperty> brightness;
    Ptr<IProperty> phi;
    Ptr<IProperty> theta;
    Ptr<IProperty> distance;
    Ptr<IProperty> specularAmount;
    Ptr<IProperty> softness;
    Ptr<IProperty> radiusFactor;
    Ptr<IProperty> densityFactor;
    Ptr<IProperty> nearDistance;
    std::uint8_t lightKind = kDefaultKind;
    // The projector map; an empty name means none.
    Texture texture;
    // The argument that drives the projector map, -1 when there is none.
    std::int32_t textureArgument = -1;

private:
    // Stores property in field unless it is a constant float equal to ignored.
    void setVolumeProperty(Ptr<IProperty>& field, Ptr<IProperty> property, float ignored);
};

}  // namespace model
