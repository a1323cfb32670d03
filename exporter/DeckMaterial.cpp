// The deck material: eight bitmaps of a dedicated material class in eight fixed texture slots, a
// fixed shader, vertex format and two scene map channels.

#include <array>

#include "exporter/MtlKeeper.h"
#include "exporter/MtlKeeperHelpers.h"
#include "exporter/ReportError.h"
#include "host/INode.h"
#include "host/Mtl.h"
#include "model/VertexSemantic.h"

namespace exporter {
namespace {

struct DeckBitmap {
    const char* parameter;
    int slot;
    std::uint32_t texCoordEntry;  // all ones: the slot keeps the default
};

constexpr std::array<DeckBitmap, 8> deckBitmaps{{
    {"BaseColorTiledMap", 0, 0},
    {"NormalTiledMap", 1, 0},
    {"RoughnessMetallicTiledMap", 2, 0},
    {"BaseColorMap", 3, 1},
    {"RoughnessMetallicMap", 4, 1},
    {"RainMaskMap", 5, 0xFFFFFFFFu},
    {"DamageMask", 6, 1},
    {"DamageMap", 7, 1},
}};

}  // namespace

PropertiesSetPtr MtlKeeper::buildDeckMaterial(host::Mtl* mtl, host::INode* node) {
    std::string mtlName = mtl->GetName();
    std::string node_ = node ? node->GetName() : std::string();
    host::IParamBlock2* block = mtl->NumParamBlocks() > 0 ? mtl->GetParamBlock(0) : nullptr;
    if (!block) {
        reportError("Deck material is empty. Material: '%s', node '%s'. File: %s:%d.", mtlName.c_str(),
                    node_.c_str(), kMtlKeeperSource, __LINE__);
        return defaultMaterial;
    }
    PropertiesSetPtr material(new model::PropertiesSet());
    material->materialName = "deck_material";
    material->name = mtlName;
    // One scratch record for all eight: only its name changes from one bitmap to the next.
    model::Texture scratch;
    for (const DeckBitmap& bitmap : deckBitmaps) {
        if (!readBitmapParam(block, bitmap.parameter, mtlName, node_, scratch)) {
            reportError("%s is not set. Material: '%s', node '%s'. File: %s:%d.", bitmap.parameter,
                        mtlName.c_str(), node_.c_str(), kMtlKeeperSource, __LINE__);
            return defaultMaterial;
        }
        material->textures[static_cast<std::size_t>(bitmap.slot)] = scratch;
        material->textureChannels[static_cast<std::size_t>(bitmap.slot)] = bitmap.texCoordEntry;
    }
    material->vertexFormat[model::POSITION0] = 4;
    material->vertexFormat[model::NORMAL0] = 4;
    material->vertexFormat[model::TANGENT0] = 3;
    material->vertexFormat[model::BINORMAL0] = 3;
    material->vertexFormat[model::TEXCOORD0] = 2;
    material->vertexFormat[model::TEXCOORD1] = 2;
    channelsByMaterial[material.get()] = {1, 2};
    return material;
}

}  // namespace exporter
