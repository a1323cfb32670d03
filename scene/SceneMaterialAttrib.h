#pragma once
// The material description attribute as the headless scene holds it: the values its operations
// return, and the node classes and kinds it accepts (all, when no list is given).

#include <optional>
#include <string>
#include <vector>

#include "host/Constants.h"
#include "host/MaterialAttrib.h"

namespace scene {

class SceneMaterialAttrib final : public host::MaterialAttrib, private host::MaterialDescription {
public:
    host::Class_ID ClassID() override { return host::MATERIAL_ATTRIB_CLASS_ID; }
    host::SClass_ID SuperClassID() override { return 0x82; }
    std::string GetName() override { return name; }

    host::MaterialDescription* description() override { return this; }
    bool acceptsNodeId(const char* modelClassName) override;
    bool acceptsNodeKind(int kind) override;

    std::string name;
    std::string materialName_;
    std::uint8_t depthBias_ = 0;
    std::uint8_t decal_ = 0;
    std::string uniformScript_;
    std::string overrideScript_;
    std::vector<host::TextureSlotDesc> textureSlots;
    std::uint8_t hasNormals_ = 1;
    std::uint32_t blending_ = 0;
    std::uint8_t shadowFlagA_ = 1;
    std::uint8_t shadowFlagB_ = 0;
    std::optional<std::vector<std::string>> nodeIds;
    std::optional<std::vector<int>> nodeKinds;

private:
    std::string materialName() override { return materialName_; }
    std::uint8_t depthBias() override { return depthBias_; }
    std::uint8_t decal() override { return decal_; }
    std::string uniformScript() override { return uniformScript_; }
    std::string overrideScript() override { return overrideScript_; }
    std::uint32_t textureCount() override { return static_cast<std::uint32_t>(textureSlots.size()); }
    void textureSlot(std::uint32_t index, host::TextureSlotDesc& out) override;
    std::uint8_t hasNormals() override { return hasNormals_; }
    std::uint32_t blending() override { return blending_; }
    std::uint8_t shadowFlagA() override { return shadowFlagA_; }
    std::uint8_t shadowFlagB() override { return shadowFlagB_; }
};

}  // namespace scene
