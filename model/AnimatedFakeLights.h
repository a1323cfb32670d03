#pragma once
// Fake lights whose data is keyed along one argument: 128 floats per light. The keyed data
// cannot take a matrix, so these refuse to bake one.

#include <cstdint>
#include <vector>

#include "model/FakeOmniLightsNode.h"
#include "model/FakeSpotLightsNode.h"
#include "model/IModelArguments.h"

namespace model {

// What the animated form adds to a fake-lights class.
template <class Base>
class AnimatedFakeLights : public Base {
public:
    bool applyTransform(std::uint32_t, const nq::Matrixd&) override { return false; }
    void forEachArgument(const std::function<void(std::uint32_t)>& f) const override {
        BaseNode::forEachArgument(f);
        if (argument != kNoArgument) {
            f(argument);
        }
    }

    std::uint32_t argument = kNoArgument;
    std::vector<float> animationData;
};

class AnimatedFakeOmniLightsNode : public AnimatedFakeLights<FakeOmniLightsNode> {
public:
    MODEL_NODE_CLASS(AnimatedFakeOmniLightsNode)
};

class AnimatedFakeSpotLightsNode : public AnimatedFakeLights<FakeSpotLightsNode> {
public:
    MODEL_NODE_CLASS(AnimatedFakeSpotLightsNode)
};

}  // namespace model
