#pragma once
// Shared pieces of the material tests: a scene document made of a few materials, the keeper, the
// parser state with the project's aux_func.lua, and an empty error list before each test.

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "exporter/ErrorTexts.h"
#include "exporter/MtlKeeper.h"
#include "exporter/ReportError.h"
#include "exporter/TextureSlotNames.h"
#include "model/VertexSemantic.h"
#include "scene/SceneLoader.h"
#include "usertext/ParamsLuaWrapper.h"

namespace exporter::test {

// A standard material named name whose material description has the given fields (JSON members
// without braces), and further material fields.
inline std::string describedMaterial(const std::string& name, const std::string& description,
                                     const std::string& materialFields = "") {
    return R"({"name": ")" + name + R"(", "attributes": [{"class": ["0x7CB6596", "0x7E112E78"])" +
           (description.empty() ? "" : ", " + description) + "}]" +
           (materialFields.empty() ? "" : ", " + materialFields) + "}";
}

// A bitmap in a map slot: {"name": slot, "map": {...}}.
inline std::string bitmapSlot(const std::string& slot, const std::string& file, int channel = 1,
                              const std::string& mapFields = "") {
    return R"({"name": ")" + slot + R"(", "map": {"fileName": ")" + file + R"(", "mapChannel": )" +
           std::to_string(channel) + (mapFields.empty() ? "" : ", " + mapFields) + "}}";
}

// The non-zero entries of a vertex format, "NAME:floats" in semantic order.
inline std::string formatText(const model::VertexFormat& f) {
    std::string out;
    for (int s = 0; s < model::kVertexSemanticCount; ++s) {
        if (f[s] != 0) {
            out +=
                (out.empty() ? "" : " ") + std::string(model::semanticName(s)) + ":" + std::to_string(f[s]);
        }
    }
    return out;
}

inline std::string textureSlot(const std::string& slot, const std::string& map,
                               const std::string& uniforms = "") {
    return R"({"slotName": ")" + slot + R"(", "mapName": ")" + map + R"(", "uniformText": ")" + uniforms +
           "\"}";
}

class MaterialTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        lu::setPluginConfigDir(NQ_SOURCE_DIR "/usertext");
        lu::ParamsLuaWrapper::instance().reset();
    }
    void SetUp() override { clearErrors(); }
    void TearDown() override { clearErrors(); }

    // Loads a document whose materials are the given JSON objects, joined by commas.
    void load(const std::string& materials) {
        scene = scene::parseScene(R"({"materials": [)" + materials + R"(], "nodes": [{"name": "hull"}]})");
    }
    host::Mtl* mtl(std::size_t i) { return scene->materials().at(i).get(); }
    host::INode* node() { return scene->root.GetChildNode(0); }
    PropertiesSetPtr get(std::size_t i, int kind = 0, const char* modelClass = "model::RenderNode") {
        return keeper.getMaterial(mtl(i), kind, modelClass, node());
    }
    std::vector<std::uint32_t> channels(const PropertiesSetPtr& material) {
        std::vector<std::uint32_t> out{99};
        keeper.getTextureChannels(material.get(), out);
        return out;
    }

    std::unique_ptr<scene::Scene> scene;
    MtlKeeper keeper;
};

}  // namespace exporter::test
