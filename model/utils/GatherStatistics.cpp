#include <cstdint>
#include <map>
#include <unordered_set>

#include "model/BaseMeshRenderNode.h"
#include "model/PropertiesSet.h"
#include "model/utils/ModelStatistics.h"

namespace model::utils {

namespace {

ModelStatistics count(const char* name, std::uint64_t value) {
    return ModelStatistics{name, std::to_string(value), {}};
}

// The word for a material's blending mode, or null for a mode that has none.
const char* blendingWord(const BaseMaterial* material) {
    const auto* set = dynamic_cast<const PropertiesSet*>(material);
    if (!set) {
        return nullptr;
    }
    switch (set->blending) {
        case 0:
            return "(Opaque)";
        case 1:
            return "(Transparent)";
        case 2:
            return "(Alpha test)";
        case 3:
            return "(Sum. transparent)";
        default:
            return nullptr;
    }
}

std::uint64_t treeNodeCount(const RootNode& root) {
    std::uint64_t n = 0;
    if (const Ptr<Node>& tree = root.rootNode()) {
        tree->visit([&n](const Ptr<Node>&) {
            ++n;
            return true;
        });
    }
    return n;
}

}  // namespace

ModelStatistics gatherStatistics(const RootNode& root) {
    // Render nodes by class and blending; sorted by key, so the same model always reads the same.
    std::map<std::string, std::uint64_t> byKind;
    std::uint64_t faces = 0;
    std::unordered_set<const BaseMaterial*> materials;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        if (const char* word = blendingWord(node->material.get())) {
            ++byKind[std::string(nodeTypeName(node->nodeType())) + word];
        }
        if (const auto* mesh = dynamic_cast<const BaseMeshRenderNode*>(node.get())) {
            faces += mesh->indices.primitiveCount();
        }
        if (node->material) {
            materials.insert(node->material.get());
        }
    }

    ModelStatistics renderNodes = count("nRenderNodes", root.renderNodes().size());
    for (const auto& [key, n] : byKind) {
        renderNodes.children.push_back(count(key.c_str(), n));
    }

    ModelStatistics result;
    result.children.push_back(count("nTransformNodes", treeNodeCount(root)));
    result.children.push_back(std::move(renderNodes));
    result.children.push_back(count("nFaces", faces));
    result.children.push_back(count("nMaterials", materials.size()));
    result.children.push_back(count("nShellNodes", root.shellNodes().size()));
    result.children.push_back(count("nConnectors", root.connectors().size()));
    result.children.push_back(count("nLights", root.lightNodes().size()));
    result.children.push_back(count("nArguments", root.calcNumHandles()));
    return result;
}

}  // namespace model::utils
