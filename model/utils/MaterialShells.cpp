#include "model/utils/MaterialShells.h"

#include <fmt/format.h>

#include "core/ExtException.h"
#include "model/NodeCreators.h"
#include "model/Property.h"
#include "model/RenderNode.h"
#include "model/ShellNode.h"

namespace model::utils {

namespace {

bool namesShellMaterial(const BaseRenderNode& node) {
    return node.nodeType() == NodeType::RenderNode && node.linkCount() == 1 &&
           findPropertyAs<Property<std::string>>(node.properties, kShellMaterialProperty) != nullptr;
}

Ptr<ShellNode> shellFrom(const RenderNode& node) {
    const char* className = nodeTypeName(NodeType::ShellNode);
    Ptr<ShellNode> shell = createNodeAs<ShellNode>(className);
    if (!shell) {
        throw nq::ExtException(fmt::format("Class {} is not registered.", className));
    }
    shell->name = node.name;
    shell->properties = node.properties;
    shell->controlNode = node.link(0);
    if (const VertexAttribute* position = node.vertices.findAttribute(POSITION0)) {
        VertexAttribute& copy = shell->vertices.setAttribute(POSITION0, position->size, position->data);
        if (copy.size > 3) {
            copy.resize(3);
        }
    }
    shell->indices = node.indices;
    return shell;
}

}  // namespace

std::uint32_t convertMaterialNodesToShells(RootNode& root) {
    std::vector<Ptr<BaseRenderNode>> kept;
    std::vector<Ptr<ShellNode>> shells;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        if (namesShellMaterial(*node)) {
            shells.push_back(shellFrom(static_cast<const RenderNode&>(*node)));
            node->root = nullptr;
        } else {
            kept.push_back(node);
        }
    }
    if (shells.empty()) {
        return 0;
    }
    root.setRenderNodes(std::move(kept));
    for (Ptr<ShellNode>& shell : shells) {
        root.addShellNode(std::move(shell));
    }
    return static_cast<std::uint32_t>(shells.size());
}

}  // namespace model::utils
