#include "model/PropertiesSet.h"

namespace model {

PropertiesSet::PropertiesSet() {
    textureChannels.fill(0xFFFFFFFFu);
}

bool PropertiesSet::equals(const PropertiesSet& other) const {
    if (name != other.name || blending != other.blending || !(vertexFormat == other.vertexFormat) ||
        textureChannels != other.textureChannels || materialName != other.materialName ||
        depthBias != other.depthBias || shadowFlagA != other.shadowFlagA ||
        shadowFlagB != other.shadowFlagB || decal != other.decal || billboard != other.billboard ||
        billboardType != other.billboardType || billboardMode != other.billboardMode) {
        return false;
    }
    for (int i = 0; i < kTextureSlots; ++i) {
        const Texture& a = textures[i];
        const Texture& b = other.textures[i];
        if (!(a.empty() && b.empty()) && !a.equals(b)) {
            return false;
        }
    }
    return equalPropertyLists(uniforms, other.uniforms);
}

}  // namespace model
