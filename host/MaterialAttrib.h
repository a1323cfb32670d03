#pragma once
// The material description that the companion material plug-in attaches to a scene material as a
// custom attribute (class MATERIAL_ATTRIB_CLASS_ID of host/Constants.h): which model material
// (shader) the scene material stands for, its texture slots, flags and scripts, and on which
// nodes it may be used.

#include <cstdint>
#include <string>

#include "host/Animatable.h"

namespace host {

struct TextureSlotDesc {
    std::string slotName;     // the model texture slot
    std::string mapName;      // the map slot of the scene material
    std::int32_t layer = 0;   // the layer of a layered map
    std::string uniformText;  // uniforms that exist only with this texture
};

class MaterialDescription {
public:
    virtual ~MaterialDescription() = default;
    virtual std::string materialName() = 0;
    virtual std::uint8_t depthBias() = 0;
    virtual std::uint8_t decal() = 0;
    virtual std::string uniformScript() = 0;
    virtual std::string overrideScript() = 0;
    virtual std::uint32_t textureCount() = 0;
    virtual void textureSlot(std::uint32_t index, TextureSlotDesc& out) = 0;
    virtual std::uint8_t hasNormals() = 0;
    virtual std::uint32_t blending() = 0;
    virtual std::uint8_t shadowFlagA() = 0;
    virtual std::uint8_t shadowFlagB() = 0;
};

class MaterialAttrib : public CustAttrib {
public:
    virtual MaterialDescription* description() = 0;
    // Whether the material may be used on a node of the model class (such as "model::RenderNode").
    virtual bool acceptsNodeId(const char* modelClassName) = 0;
    // Whether the material may be used on a node of that kind (0 meshes, 1 fake lights, 2 lines).
    virtual bool acceptsNodeKind(int kind) = 0;
};

}  // namespace host
