#include "model/NodeType.h"

#include <array>

namespace model {

const char* nodeTypeName(std::uint32_t id) noexcept {
    static constexpr std::array<const char*, 27> names = {
        "model::ArgAnimatedBone",
        "model::ArgAnimationNode",
        "model::ArgRotationNode",
        "model::ArgScaleNode",
        "model::ArgPositionNode",
        "model::ArgVisibilityNode",
        "model::Bone",
        "model::Connector",
        "model::LightNode",
        "model::LodNode",
        "model::Node",
        "model::RenderNode",
        "model::BillboardNode",
        "model::ShellNode",
        "model::TreeShellNode",
        "model::SegmentsNode",
        "model::RootNode",
        "model::SkinNode",
        "model::TransformNode",
        "model::FakeOmniLightsNode",
        "model::FakeSpotLightsNode",
        "model::AnimatedFakeOmniLightsNode",
        "model::AnimatedFakeSpotLightsNode",
        "model::NumberNode",
        "model::ShellSkinNode",
        "model::FakeSpotLights3Node",
        "model::TmpNumberRoot",
    };
    return id < names.size() ? names[id] : "UNKNOWN_NODE_ID";
}

}  // namespace model
