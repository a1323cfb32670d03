#include "exporter/MtlKeeper.h"

#include <algorithm>
#include <cmath>

#include "exporter/MtlKeeperHelpers.h"
#include "exporter/ReportError.h"
#include "exporter/TextureSlotNames.h"
#include "host/Constants.h"
#include "host/INode.h"
#include "host/Mtl.h"
#include "model/VertexSemantic.h"

namespace exporter {
namespace {

bool isIdentity(const nq::Matrixf& m) {
    nq::Matrixf identity;
    for (int i = 0; i < 16; ++i) {
        if (std::fabs(m[i] - identity[i]) > 1e-6f) {
            return false;
        }
    }
    return true;
}

std::string nodeName(host::INode* node) {
    return node ? node->GetName() : std::string();
}

}  // namespace

MtlKeeper::MtlKeeper() {
    for (std::size_t i = 0; i < texCoordSlotNames.size(); ++i) {
        texCoordIndexBySlot.emplace(std::string(texCoordSlotNames[i]), static_cast<int>(i));
    }
    for (std::size_t i = 0; i < textureSlotNames.size(); ++i) {
        slotIndexByName.emplace(std::string(textureSlotNames[i]), static_cast<int>(i));
    }
}

PropertiesSetPtr MtlKeeper::getMaterial(host::Mtl* mtl, int kind, const char* modelClassName,
                                        host::INode* node) {
    if (!mtl || mtl->ClassID() == host::Class_ID(host::MULTI_CLASS_ID, 0)) {
        return defaultMaterial;
    }
    for (const auto& [known, material] : materialsByMtl) {
        if (known == mtl && material) {
            return material;
        }
    }
    host::Class_ID id = mtl->ClassID();
    PropertiesSetPtr built;
    if (id == host::Class_ID(3, 0) || id == host::Class_ID(host::DMTL_CLASS_ID, 0)) {
        built = buildStandardMaterial(mtl, kind, modelClassName, node);
    } else if (id == host::DECK_MTL_CLASS_ID) {
        built = buildDeckMaterial(mtl, node);
    }
    if (!built) {
        return defaultMaterial;
    }
    // Equal content shares the material made first; the culling flag takes no part in that.
    for (const auto& entry : materialsByMtl) {
        if (entry.second->equals(*built)) {
            PropertiesSetPtr shared = entry.second;
            materialsByMtl.emplace_back(mtl, shared);
            return shared;
        }
    }
    materialsByMtl.emplace_back(mtl, built);
    return built;
}

void MtlKeeper::getTextureChannels(const model::PropertiesSet* material, std::vector<std::uint32_t>& out) {
    out.clear();
    auto it = channelsByMaterial.find(material);
    if (it != channelsByMaterial.end()) {
        out = it->second;
    }
}

void MtlKeeper::clear() {
    materialsByMtl.clear();
    channelsByMaterial.clear();
}

PropertiesSetPtr MtlKeeper::buildStandardMaterial(host::Mtl* mtl, int kind, const char* modelClassName,
                                                  host::INode* node) {
    std::string node_ = nodeName(node);
    std::string mtlName = mtl->GetName();
    host::MaterialAttrib* attrib = findMaterialAttrib(mtl);
    if (!attrib) {
        return defaultMaterial;
    }
    if (!attrib->acceptsNodeId(modelClassName)) {
        reportError("Can't use material '%s' with node '%s'. Reason: wrong node id(%s).\tFile: %s:%d.",
                    mtlName.c_str(), node_.c_str(), modelClassName ? modelClassName : "", kMtlKeeperSource,
                    __LINE__);
        return defaultMaterial;
    }
    if (!attrib->acceptsNodeKind(kind)) {
        reportError("Can't use material '%s' to node '%s'. Reason: node has wrong type.\tFile: %s:%d.",
                    mtlName.c_str(), node_.c_str(), kMtlKeeperSource, __LINE__);
        return defaultMaterial;
    }
    host::MaterialDescription* description = attrib->description();
    if (!description) {
        return defaultMaterial;
    }
    PropertiesSetPtr material(new model::PropertiesSet());
    material->shadowFlagA = description->shadowFlagA();
    material->shadowFlagB = description->shadowFlagB();
    material->culling = isTwoSided(mtl) ? 0 : 1;
    material->materialName = description->materialName();
    if (material->materialName.empty()) {
        reportError("Empty material name. Material: %s.\tFile: %s:%d.", mtlName.c_str(), kMtlKeeperSource,
                    __LINE__);
        material->materialName = "dummy";
    }
    material->name = mtlName;
    material->depthBias = description->depthBias();
    material->decal = description->decal();
    material->vertexFormat[model::POSITION0] = 4;
    material->vertexFormat[model::NORMAL0] = description->hasNormals() != 0 ? 3 : 0;
    std::string gatheredText;
    if (!collectTextures(*material, gatheredText, mtl, *description)) {
        return defaultMaterial;
    }
    if (material->textureChannels[static_cast<std::size_t>(texCoordIndexBySlot.at("NormalMap"))] !=
        model::kNoTexCoordChannel) {
        material->vertexFormat[model::TANGENT0] = 3;
        material->vertexFormat[model::BINORMAL0] = 3;
    }
    if (material->textureChannels[static_cast<std::size_t>(texCoordIndexBySlot.at("DamageNormalMap"))] !=
        model::kNoTexCoordChannel) {
        material->vertexFormat[model::TANGENT1] = 3;
        material->vertexFormat[model::BINORMAL1] = 3;
    }
    material->blending = static_cast<std::uint8_t>(description->blending());
    applyUniformScripts(mtl, *material, description->uniformScript(), gatheredText,
                        description->overrideScript());
    return material;
}

bool MtlKeeper::collectTextures(model::PropertiesSet& material, std::string& gatheredText, host::Mtl* mtl,
                                host::MaterialDescription& description) {
    std::vector<std::uint32_t> channels;
    std::uint32_t count = description.textureCount();
    for (std::uint32_t i = 0; i < count; ++i) {
        host::TextureSlotDesc slot;
        description.textureSlot(i, slot);
        host::Texmap* map = findSubMap(mtl, slot.mapName, slot.layer);
        if (!map || map->GetMapChannel() < 1) {
            continue;
        }
        auto slotIt = slotIndexByName.find(slot.slotName);
        if (slotIt == slotIndexByName.end()) {
            reportError("Unknown texture slot name %s. Material: %s. File: %s:%d.", slot.slotName.c_str(),
                        mtl->GetName().c_str(), kMtlKeeperSource, __LINE__);
            return false;
        }
        model::Texture& texture = material.textures[static_cast<std::size_t>(slotIt->second)];
        readTexture(map, texture);
        if (texture.empty()) {
            continue;
        }
        auto coordIt = texCoordIndexBySlot.find(slot.slotName);
        if (coordIt != texCoordIndexBySlot.end()) {
            auto channel = static_cast<std::uint32_t>(map->GetMapChannel());
            auto first = std::find(channels.begin(), channels.end(), channel);
            auto& entry = material.textureChannels[static_cast<std::size_t>(coordIt->second)];
            // Only a transformed texture shares the coordinates of an earlier one on its channel; a
            // plain texture always gets a channel position of its own.
            if (first != channels.end() && !isIdentity(texture.matrix)) {
                entry = static_cast<std::uint32_t>(first - channels.begin());
            } else {
                channels.push_back(channel);
                entry = static_cast<std::uint32_t>(channels.size() - 1);
            }
            if (channels.size() > kMaxChannels) {
                reportError(
                    "Too much texture coordinates channels in material: %s. The maximal number of texture "
                    "coordinates channels is %d.\tFile: %s:%d.",
                    mtl->GetName().c_str(), static_cast<int>(kMaxChannels), kMtlKeeperSource, __LINE__);
                return false;
            }
        }
        gatheredText += slot.uniformText;
    }
    for (std::size_t p = 0; p < channels.size(); ++p) {
        material.vertexFormat[model::texCoordSemantic(static_cast<int>(p))] = 2;
    }
    channelsByMaterial[&material] = channels;
    return true;
}

}  // namespace exporter
