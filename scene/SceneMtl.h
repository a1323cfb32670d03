#pragma once
// The materials of the headless scene and their custom attributes. Every material answers as a
// standard material; callers tell the kinds apart by the class. A multi-material holds its
// sub-materials, a standard material its colours, shader values, map slots, parameter blocks and
// sub-animatable tree, a deck material its bitmaps in its first parameter block.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/Mtl.h"
#include "scene/SceneParamBlock.h"
#include "scene/SceneSubAnims.h"
#include "scene/SceneTexmap.h"

namespace scene {

class SceneCustAttrib : public host::CustAttrib {
public:
    SceneCustAttrib(host::Class_ID classId, std::string name) : class_(classId), name_(std::move(name)) {}

    host::Class_ID ClassID() override { return class_; }
    // The super class of custom attributes.
    host::SClass_ID SuperClassID() override { return 0x82; }
    std::string GetName() override { return name_; }

private:
    host::Class_ID class_;
    std::string name_;
};

class SceneMtl : public host::StdMat2, private host::ICustAttribContainer, private host::Shader {
public:
    struct ShaderValues {
        float specularLevel = 0;
        float glossiness = 0.1f;
        host::Color selfIllumColor{};
    };
    struct MapSlot {
        std::string name;
        bool on = true;
        std::unique_ptr<SceneTexmap> map;  // null for an empty slot
    };

    SceneMtl(host::Class_ID classId, std::string name) : classId(classId), name(std::move(name)) {}

    host::Class_ID ClassID() override { return classId; }
    std::string GetName() override { return name; }
    int NumSubMtls() override { return static_cast<int>(subMaterials.size()); }
    host::Mtl* GetSubMtl(int i) override;
    host::ICustAttribContainer* GetCustAttribContainer() override {
        return attributes.empty() ? nullptr : this;
    }
    int NumSubs() override { return subAnims.count(); }
    host::Animatable* SubAnim(int i) override { return subAnims.child(i); }
    std::string SubAnimName(int i) override { return subAnims.name(i); }
    int NumParamBlocks() override { return static_cast<int>(paramBlocks.size()); }
    host::IParamBlock2* GetParamBlock(int i) override;

    int NumSubTexmaps() override { return static_cast<int>(mapSlots.size()); }
    host::Texmap* GetSubTexmap(int i) override;
    std::string GetSubTexmapSlotName(int i) override;
    bool SubTexmapOn(int i) override;
    host::Color GetAmbient(int, bool) override { return ambient; }
    host::Color GetDiffuse(int, bool) override { return diffuse; }
    bool GetTwoSided() override { return twoSided; }
    host::Shader* GetShader() override { return shader ? this : nullptr; }

    host::Class_ID classId;
    std::string name;
    // Slots of a multi-material; null for an empty slot. The materials belong to the scene.
    std::vector<SceneMtl*> subMaterials;
    std::vector<std::unique_ptr<host::CustAttrib>> attributes;
    bool twoSided = false;
    host::Color ambient{0.588f, 0.588f, 0.588f};
    host::Color diffuse{0.588f, 0.588f, 0.588f};
    std::optional<ShaderValues> shader;
    std::vector<MapSlot> mapSlots;
    std::vector<std::unique_ptr<SceneParamBlock>> paramBlocks;
    SubAnimTree subAnims;

private:
    int GetNumCustAttribs() override { return static_cast<int>(attributes.size()); }
    host::CustAttrib* GetCustAttrib(int i) override;
    float GetSpecularLevel(int, bool) override { return shader->specularLevel; }
    float GetGlossiness(int, bool) override { return shader->glossiness; }
    host::Color GetSelfIllumColor(int, bool) override { return shader->selfIllumColor; }
};

}  // namespace scene
