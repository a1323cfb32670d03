#include "model/utils/CheckMaterials.h"

#include <unordered_set>

#include "model/BaseMeshRenderNode.h"
#include "model/utils/MeshChecks.h"
#include "model/utils/PrepareVertices.h"
#include "model/utils/RemoveEmptyNodes.h"

namespace model::utils {

std::string_view materialLayoutFault(const PropertiesSet& material) {
    for (std::uint32_t channel : material.textureChannels) {
        if (channel != kNoTexCoordChannel &&
            (channel >= static_cast<std::uint32_t>(kTexCoordChannels) ||
             material.vertexFormat[texCoordSemantic(static_cast<int>(channel))] == 0)) {
            return kBrokenTextureChannels;
        }
    }
    return material.vertexFormat[POSITION0] == 0 ? kWrongVertexSize : std::string_view();
}

std::vector<std::string> checkMaterials(const RootNode& root) {
    std::vector<std::string> faults;
    std::unordered_set<const PropertiesSet*> seen;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        // A node that draws nothing is dropped before saving, whatever its material.
        if (renderPrimitiveCount(*node) == 0) {
            continue;
        }
        const auto* material = dynamic_cast<const PropertiesSet*>(node->material.get());
        if (!material) {
            faults.push_back("Unknown properties set. Node: " + node->name + ".");
            continue;
        }
        if (!dynamic_cast<const BaseMeshRenderNode*>(node.get()) || !seen.insert(material).second) {
            continue;
        }
        std::string_view fault = materialLayoutFault(*material);
        if (!fault.empty()) {
            std::string text(fault);
            if (text.back() != '.') {
                text += '.';
            }
            faults.push_back(text + " Material: " + material->name + ".");
        }
    }
    return faults;
}

}  // namespace model::utils
