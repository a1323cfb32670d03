#include "model/LightNode.h"

#include "model/IModelArguments.h"
#include "model/Node.h"
#include "model/Property.h"

namespace model {

void LightNode::forEachArgument(const std::function<void(std::uint32_t)>& f) const {
    BaseNode::forEachArgument(f);
    for (const Ptr<IProperty>* field : {&color, &brightness, &phi, &theta, &distance, &specularAmount,
                                        &softness, &radiusFactor, &densityFactor, &nearDistance}) {
        const auto* animated = dynamic_cast<const IAnimatedProperty*>(field->get());
        if (animated && animated->argument != kNoArgument) {
            f(animated->argument);
        }
    }
    if (hasTexture() && textureArgument >= 0) {
        f(static_cast<std::uint32_t>(textureArgument));
    }
}

void LightNode::setVolumeProperty(Ptr<IProperty>& field, Ptr<IProperty> property, float ignored) {
    const auto* constant = dynamic_cast<const FloatProperty*>(property.get());
    if (!property || (constant && constant->value == ignored)) {
        return;
    }
    field = std::move(property);
    version = kVolumeVersion;
}

void LightNode::setRadiusFactor(Ptr<IProperty> property) {
    setVolumeProperty(radiusFactor, std::move(property), 0.0f);
}

void LightNode::setDensityFactor(Ptr<IProperty> property) {
    setVolumeProperty(densityFactor, std::move(property), 1.0f);
}

void LightNode::setNearDistance(Ptr<IProperty> property) {
    setVolumeProperty(nearDistance, std::move(property), 0.0f);
}

void LightNode::setLightKind(std::uint8_t kind) {
    if (kind == kDefaultKind) {
        return;
    }
    lightKind = kind;
    version = kVolumeVersion;
}

}  // namespace model
