#pragma once
// The materials of the headless scene and their custom attributes.

#include <memory>
#include <string>
#include <vector>

#include "host/Mtl.h"

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

class SceneMtl : public host::Mtl, private host::ICustAttribContainer {
public:
    SceneMtl(host::Class_ID classId, std::string name) : classId(classId), name(std::move(name)) {}

    host::Class_ID ClassID() override { return classId; }
    std::string GetName() override { return name; }
    int NumSubMtls() override { return static_cast<int>(subMaterials.size()); }
    host::Mtl* GetSubMtl(int i) override;
    host::ICustAttribContainer* GetCustAttribContainer() override {
        return attributes.empty() ? nullptr : this;
    }

    host::Class_ID classId;
    std::string name;
    // Slots of a multi-material; null for an empty slot. The materials belong to the scene.
    std::vector<SceneMtl*> subMaterials;
    std::vector<std::unique_ptr<SceneCustAttrib>> attributes;

private:
    int GetNumCustAttribs() override { return static_cast<int>(attributes.size()); }
    host::CustAttrib* GetCustAttrib(int i) override;
};

}  // namespace scene
