#pragma once
// Double dispatch over the node classes: a node's accept calls the visit of its own class.

namespace model {

class RootNode;
class Connector;
class LightNode;
class NumberNode;
class SkinNode;
class RenderNode;
class AnimatedFakeSpotLightsNode;
class FakeSpotLights3Node;
class FakeSpotLightsNode;
class AnimatedFakeOmniLightsNode;
class FakeOmniLightsNode;
class SegmentsNode;
class ShellSkinNode;
class ShellNode;
class LodNode;
class Bone;
class BillboardNode;
class ArgVisibilityNode;
class ArgAnimatedBone;
class ArgAnimationNode;
class TransformNode;
class Node;

// One visit per class; TmpNumberRoot visits as Node. Visitors read: a node may be visited
// through a const reference.
class INodeVisitor {
public:
    virtual ~INodeVisitor() = default;
    virtual void visit(const RootNode& node) = 0;
    virtual void visit(const Connector& node) = 0;
    virtual void visit(const LightNode& node) = 0;
    virtual void visit(const NumberNode& node) = 0;
    virtual void visit(const SkinNode& node) = 0;
    virtual void visit(const RenderNode& node) = 0;
    virtual void visit(const AnimatedFakeSpotLightsNode& node) = 0;
    virtual void visit(const FakeSpotLights3Node& node) = 0;
    virtual void visit(const FakeSpotLightsNode& node) = 0;
    virtual void visit(const AnimatedFakeOmniLightsNode& node) = 0;
    virtual void visit(const FakeOmniLightsNode& node) = 0;
    virtual void visit(const SegmentsNode& node) = 0;
    virtual void visit(const ShellSkinNode& node) = 0;
    virtual void visit(const ShellNode& node) = 0;
    virtual void visit(const LodNode& node) = 0;
    virtual void visit(const Bone& node) = 0;
    virtual void visit(const BillboardNode& node) = 0;
    virtual void visit(const ArgVisibilityNode& node) = 0;
    virtual void visit(const ArgAnimatedBone& node) = 0;
    virtual void visit(const ArgAnimationNode& node) = 0;
    virtual void visit(const TransformNode& node) = 0;
    virtual void visit(const Node& node) = 0;
};

}  // namespace model
