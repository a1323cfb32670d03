#pragma once
// The node classes by number. The names are the class names that the file carries.

#include <cstdint>

namespace model {

enum class NodeType : std::uint32_t {
    ArgAnimatedBone = 0,
    ArgAnimationNode = 1,
    ArgRotationNode = 2,
    ArgScaleNode = 3,
    ArgPositionNode = 4,
    ArgVisibilityNode = 5,
    Bone = 6,
    Connector = 7,
    LightNode = 8,
    LodNode = 9,
    Node = 10,
    RenderNode = 11,
    BillboardNode = 12,
    ShellNode = 13,
    TreeShellNode = 14,  // a name without a class
    SegmentsNode = 15,
    RootNode = 16,
    SkinNode = 17,
    TransformNode = 18,
    FakeOmniLightsNode = 19,
    FakeSpotLightsNode = 20,
    AnimatedFakeOmniLightsNode = 21,
    AnimatedFakeSpotLightsNode = 22,
    NumberNode = 23,
    ShellSkinNode = 24,
    FakeSpotLights3Node = 25,
    TmpNumberRoot = 26,
};

// "model::..." for a known number, "UNKNOWN_NODE_ID" for any other.
const char* nodeTypeName(std::uint32_t id) noexcept;
inline const char* nodeTypeName(NodeType type) noexcept {
    return nodeTypeName(static_cast<std::uint32_t>(type));
}

}  // namespace model
