#pragma once
// The model's material: blending, shadows, textures by slot, uniforms and the vertex format the
// material expects.

#include <array>
#include <cstdint>
#include <string>

#include "model/BaseMaterial.h"
#include "model/PropertyList.h"
#include "model/Texture.h"
#include "model/VertexFormat.h"

namespace model {

class PropertiesSet : public BaseMaterial {
public:
    static constexpr int kTextureSlots = 19;
    static constexpr int kTextureChannels = 13;

    PropertiesSet();

    // Compares in a fixed order and stops at the first difference. The culling flag takes no
    // part, and two textures that differ count as equal when both are empty.
    bool equals(const PropertiesSet& other) const;

    std::string name;
    std::uint8_t blending = 0;
    PropertyList uniforms;
    std::uint8_t depthBias = 0;
    std::uint8_t shadowFlagA = 1;
    std::uint8_t shadowFlagB = 0;
    std::uint8_t culling = 1;
    std::array<Texture, kTextureSlots> textures;
    VertexFormat vertexFormat;
    std::array<std::uint32_t, kTextureChannels> textureChannels;
    std::string materialName;
    std::uint8_t decal = 0;
    std::uint32_t billboard = 0;
    std::uint32_t billboardType = 0;
    std::uint32_t billboardMode = 6;
};

}  // namespace model
