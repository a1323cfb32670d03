#pragma once
// The node records of format version 10: one visit per class writes that class's record.

#include <cstdint>
#include <string>
#include <unordered_map>

#include "model/INodeVisitor.h"
#include "model/IObject.h"
#include "model/PropertyList.h"
#include "model/io/IBinaryFileW.h"

namespace model {

class Node;
class BaseNode;
class BaseRenderNode;
class BaseShellNode;
class SkinData;
struct Box;
template <class T>
class AnimatedFakeLights;

// Pre-order index of every node of the transform tree.
using NodeIndexMap = std::unordered_map<const Node*, std::uint32_t>;

class TreeNodeIndex;

class NodeWriter10 : public INodeVisitor {
public:
    NodeWriter10(io::IBinaryFileW& file, const NodeIndexMap& nodeIndices)
        : file_(file), nodeIndices_(&nodeIndices) {}
    // Looks tree nodes up in a flat index made for one save instead of a map of the whole tree.
    NodeWriter10(io::IBinaryFileW& file, TreeNodeIndex& treeIndex) : file_(file), treeIndex_(&treeIndex) {}

    // The root record then gets 0 in place of its handle count: the caller counts the handles
    // while the nodes pass by anyway and writes the count over the placeholder at the end.
    void countHandlesLater() { countHandlesLater_ = true; }

    void visit(const RootNode& node) override;
    void visit(const Connector& node) override;
    void visit(const LightNode& node) override;
    void visit(const NumberNode& node) override;
    void visit(const SkinNode& node) override;
    void visit(const RenderNode& node) override;
    void visit(const AnimatedFakeSpotLightsNode& node) override;
    void visit(const FakeSpotLights3Node& node) override;
    void visit(const FakeSpotLightsNode& node) override;
    void visit(const AnimatedFakeOmniLightsNode& node) override;
    void visit(const FakeOmniLightsNode& node) override;
    void visit(const SegmentsNode& node) override;
    void visit(const ShellSkinNode& node) override;
    void visit(const ShellNode& node) override;
    void visit(const LodNode& node) override;
    void visit(const Bone& node) override;
    void visit(const BillboardNode& node) override;
    void visit(const ArgVisibilityNode& node) override;
    void visit(const ArgAnimatedBone& node) override;
    void visit(const ArgAnimationNode& node) override;
    void visit(const TransformNode& node) override;
    void visit(const Node& node) override;

private:
    void writeName(const std::string& name);
    void writeNameAndProperties(const std::string& name, const PropertyList& properties);
    void writeBase(const BaseNode& node);
    void writeNodeHead(const Node& node);
    void writeRender(const BaseRenderNode& node);
    void writeShell(const BaseShellNode& node);
    void writeNodeIndex(const Ptr<Node>& node);
    void writeSkinBones(const SkinData& skin);
    void writeBox(const Box& box);
    void writeTransformRecord(const TransformNode& node);
    void writeAnimationRecord(const ArgAnimationNode& node);
    void writeRenderBody(const RenderNode& node);
    void writeOmniBody(const FakeOmniLightsNode& node);
    void writeSpotBody(const FakeSpotLightsNode& node);
    template <class T>
    void writeAnimatedTail(const AnimatedFakeLights<T>& node, const char* className);

    io::IBinaryFileW& file_;
    const NodeIndexMap* nodeIndices_ = nullptr;
    TreeNodeIndex* treeIndex_ = nullptr;
    bool countHandlesLater_ = false;
};

}  // namespace model
