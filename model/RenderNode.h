#pragma once
// A mesh on one or more tree nodes. With several parents, each vertex names its parent by
// number in the fourth float of its POSITION0.

#include <cstdint>
#include <vector>

#include "model/BaseMeshRenderNode.h"
#include "model/IModelArguments.h"
#include "model/NodeClassMacros.h"

namespace model {

// One parent of a render node: the tree node and the argument that goes with it.
struct RenderLink {
    Ptr<Node> node;
    std::uint32_t argument = kNoArgument;
};

class RenderNode : public BaseMeshRenderNode {
public:
    MODEL_NODE_CLASS(RenderNode)

    std::uint32_t linkCount() const override { return static_cast<std::uint32_t>(links.size()); }
    Ptr<Node> link(std::uint32_t i) const override { return linkIn(links, i).node; }
    void setLink(std::uint32_t i, Ptr<Node> node) override { linkIn(links, i).node = std::move(node); }
    // Bakes m into the vertices whose parent number is link (all of them for a single parent).
    bool applyTransform(std::uint32_t link, const nq::Matrixd& m) override;
    // The node's properties and the bound arguments of its parents.
    void forEachArgument(const std::function<void(std::uint32_t)>& f) const override;

    // Installs parents and mesh at once, as a merge produces them.
    void setMesh(std::vector<RenderLink> parents, Indices newIndices, Vertices newVertices);

    std::vector<RenderLink> links;
    // Written only from class version 1 on.
    std::uint32_t renderOption = 0;
};

}  // namespace model
