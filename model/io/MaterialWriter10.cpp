#include "model/io/MaterialWriter10.h"

#include "core/Utf8.h"

namespace model {

void writePropertyList(io::IBinaryFileW& file, const PropertyList& list) {
    file.writeU32(static_cast<std::uint32_t>(list.size()));
    for (const Ptr<IProperty>& property : list) {
        property->save(file);
    }
}

void writeTexture(io::IBinaryFileW& file, const Texture& texture) {
    file.writeU32(texture.texCoordChannel);
    file.writeString(nq::utf8ToLower(texture.name));
    file.writeU32(texture.wrapU);
    file.writeU32(texture.wrapV);
    file.writeU32(texture.filter);
    file.writeU32(texture.mipFilter);
    file.writeBlock(texture.matrix);
}

namespace {

void writeUniforms(io::IBinaryFileW& file, const PropertyList& uniforms, bool animated) {
    PropertyList part;
    for (const Ptr<IProperty>& property : uniforms) {
        if (property->isAnimated() == animated) {
            part.push_back(property);
        }
    }
    writePropertyList(file, part);
}

}  // namespace

void writeMaterial(io::IBinaryFileW& file, PropertiesSet& material) {
    // Slot 13 wins over slot 2 when both are set; the material keeps the change.
    if (!material.textures[2].name.empty() && !material.textures[13].name.empty()) {
        material.textures[2].name.clear();
    }

    std::uint32_t entries = 10 + (material.billboard ? 1 : 0) + (material.decal ? 1 : 0);
    std::uint64_t head = file.tell();

    file.writeString("BLENDING");
    file.writeU8(material.blending);
    file.writeString("DEPTH_BIAS");
    file.writeU32(material.depthBias ? 1 : 0);
    file.writeString("VERTEX_FORMAT");
    material.vertexFormat.save(file);
    file.writeString("TEXTURE_COORDINATES_CHANNELS");
    file.writeU32(static_cast<std::uint32_t>(material.textureChannels.size()));
    for (std::uint32_t channel : material.textureChannels) {
        file.writeU32(channel);
    }
    file.writeString("MATERIAL_NAME");
    file.writeString(material.materialName);
    file.writeString("NAME");
    file.writeString(material.name);
    file.writeString("SHADOWS");
    file.writeU8(static_cast<std::uint8_t>((material.shadowFlagA ? 1 : 0) | (material.shadowFlagB ? 4 : 0)));

    file.writeString("TEXTURES");
    std::uint32_t used = 0;
    for (const Texture& texture : material.textures) {
        used += texture.name.empty() ? 0 : 1;
    }
    file.writeU32(used);
    for (std::uint32_t slot = 0; slot < material.textures.size(); ++slot) {
        if (!material.textures[slot].name.empty()) {
            file.writeU32(slot);
            writeTexture(file, material.textures[slot]);
        }
    }

    file.writeString("UNIFORMS");
    writeUniforms(file, material.uniforms, false);
    file.writeString("ANIMATED_UNIFORMS");
    writeUniforms(file, material.uniforms, true);

    if (material.billboard) {
        file.writeString("BILLBOARD");
        file.writeU8(static_cast<std::uint8_t>(material.billboardType));
        file.writeU8(static_cast<std::uint8_t>(material.billboardMode));
    }
    if (material.decal) {
        file.writeString("DECAL");
        file.writeU8(material.decal);
    }

    // The count goes in front of the entries: seek back, insert, and return behind the record.
    std::uint64_t end = file.tell();
    file.seek(head);
    file.writeU32(entries);
    file.seek(end + 4);
}

}  // namespace model
