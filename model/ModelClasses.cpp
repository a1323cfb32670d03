#include "model/AnimatedFakeLights.h"
#include "model/AnimatedProperty.h"
#include "model/ArgAnimatedBone.h"
#include "model/ArgVisibilityNode.h"
#include "model/ArgumentProperty.h"
#include "model/BillboardNode.h"
#include "model/Bone.h"
#include "model/FakeSpotLights3Node.h"
#include "model/LodNode.h"
#include "model/NumberNode.h"
#include "model/ObjectRegistry.h"
#include "model/Property.h"
#include "model/RootNode.h"
#include "model/SegmentsNode.h"
#include "model/ShellSkinNode.h"
#include "model/SkinNode.h"
#include "model/TmpNumberRoot.h"

namespace model {

namespace {
template <class T>
void registerNode(ObjectRegistry& registry, NodeType type) {
    registry.registerClass<T>(nodeTypeName(type));
}

template <class P>
void registerProperty(ObjectRegistry& registry) {
    registry.registerClass<P>(P::kClassName);
}
}  // namespace

// Every concrete class of the model under the name that appears in the file. Property classes go
// by their template-shaped names; three of the animation names share one class.
void registerModelClasses(ObjectRegistry& registry) {
    registerNode<FakeOmniLightsNode>(registry, NodeType::FakeOmniLightsNode);
    registerNode<AnimatedFakeOmniLightsNode>(registry, NodeType::AnimatedFakeOmniLightsNode);
    registerNode<AnimatedFakeSpotLightsNode>(registry, NodeType::AnimatedFakeSpotLightsNode);
    registerNode<FakeSpotLightsNode>(registry, NodeType::FakeSpotLightsNode);
    registerNode<FakeSpotLights3Node>(registry, NodeType::FakeSpotLights3Node);
    registerNode<NumberNode>(registry, NodeType::NumberNode);
    registerNode<RootNode>(registry, NodeType::RootNode);
    registerNode<Node>(registry, NodeType::Node);
    registerNode<RenderNode>(registry, NodeType::RenderNode);
    registerNode<LightNode>(registry, NodeType::LightNode);
    registerNode<TransformNode>(registry, NodeType::TransformNode);
    registerNode<BillboardNode>(registry, NodeType::BillboardNode);
    registerNode<SkinNode>(registry, NodeType::SkinNode);
    registerNode<ShellNode>(registry, NodeType::ShellNode);
    registerNode<ShellSkinNode>(registry, NodeType::ShellSkinNode);
    registerNode<SegmentsNode>(registry, NodeType::SegmentsNode);
    registerNode<LodNode>(registry, NodeType::LodNode);
    registerNode<ArgVisibilityNode>(registry, NodeType::ArgVisibilityNode);
    // One class under four names; a node is saved under the narrowest that fits its keys.
    registerNode<ArgAnimationNode>(registry, NodeType::ArgAnimationNode);
    registerNode<ArgAnimationNode>(registry, NodeType::ArgScaleNode);
    registerNode<ArgAnimationNode>(registry, NodeType::ArgRotationNode);
    registerNode<ArgAnimationNode>(registry, NodeType::ArgPositionNode);
    registerNode<Connector>(registry, NodeType::Connector);
    registerNode<Bone>(registry, NodeType::Bone);
    registerNode<ArgAnimatedBone>(registry, NodeType::ArgAnimatedBone);
    registerProperty<FloatProperty>(registry);
    registerProperty<UIntProperty>(registry);
    registerProperty<Vec2fProperty>(registry);
    registerProperty<Vec3fProperty>(registry);
    registerProperty<Vec4fProperty>(registry);
    registerProperty<StringProperty>(registry);
    registerProperty<ArgumentProperty>(registry);
    registerProperty<AnimatedFloatProperty>(registry);
    registerProperty<AnimatedVec2fProperty>(registry);
    registerProperty<AnimatedVec3fProperty>(registry);
    registerProperty<AnimatedVec4fProperty>(registry);
    registerNode<TmpNumberRoot>(registry, NodeType::TmpNumberRoot);
}

}  // namespace model
