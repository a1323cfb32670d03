// The deck material and the helpers by which the keeper reads maps: layers, file names, wrap
// modes and transforms, the two-sided flag.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "MaterialTestSupport.h"
#include "exporter/MtlKeeperHelpers.h"
#include "host/Constants.h"
#include "model/VertexSemantic.h"
#include "scene/SceneMtl.h"

namespace {

using namespace exporter::test;
using exporter::errorList;

const char* const kDeckParameters[] = {"BaseColorTiledMap",
                                       "NormalTiledMap",
                                       "RoughnessMetallicTiledMap",
                                       "BaseColorMap",
                                       "RoughnessMetallicMap",
                                       "RainMaskMap",
                                       "DamageMask",
                                       "DamageMap"};

// A deck material whose parameter `changed` holds `bitmap` (a JSON value) instead of a file.
std::string deck(const std::string& name, const std::string& changed = "", const std::string& bitmap = "") {
    std::string params;
    for (const char* p : kDeckParameters) {
        std::string value = p == changed ? bitmap : "\"D:/Deck/" + std::string(p) + ".TGA\"";
        params += std::string(params.empty() ? "" : ", ") + R"({"localName": ")" + p + R"(", "bitmaps": [)" +
                  value + "]}";
    }
    return R"({"name": ")" + name + R"(", "class": ["0xCC02D", "0x5B07B"], "paramBlocks": [{"params": [)" +
           params + "]}]}";
}

TEST_F(MaterialTest, DeckMaterialHasAFixedLayout) {
    load(deck("Deck"));
    auto m = get(0);
    ASSERT_TRUE(m);
    EXPECT_TRUE(errorList().empty());
    EXPECT_EQ(m->materialName, "deck_material");
    EXPECT_EQ(m->name, "Deck");
    EXPECT_EQ(channels(m), (std::vector<std::uint32_t>{1, 2}));
    EXPECT_EQ(m->textureChannels,
              (std::array<std::uint32_t, 13>{0, 0, 0, 1, 1, 0xFFFFFFFFu, 1, 1, 0xFFFFFFFFu, 0xFFFFFFFFu,
                                             0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu}));
    EXPECT_EQ(m->textures[0].name, "basecolortiledmap");
    EXPECT_EQ(m->textures[7].name, "damagemap");
    EXPECT_TRUE(m->textures[8].empty());
    EXPECT_EQ(formatText(m->vertexFormat),
              "POSITION0:4 NORMAL0:4 TANGENT0:3 BINORMAL0:3 TEXCOORD0:2 TEXCOORD1:2");
    EXPECT_TRUE(m->uniforms.empty());
}

TEST_F(MaterialTest, DeckMaterialFailuresGiveTwoMessagesAndNothing) {
    load(
        deck("A", "DamageMask", "null") + ", " + deck("B", "RainMaskMap", "\"\"") + ", " +
        deck("C", "BaseColorMap", "\"x.tga\"").replace(deck("C").find("BaseColorMap\""), 12, "BaseColorMop") +
        R"(, {"name": "E", "class": ["0xCC02D", "0x5B07B"]})");
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_FALSE(get(i)) << i;
    }
    const std::string helpers = "File: Exporter\\src\\MtlKeeperHelpers.cpp";
    const std::string keeper = "File: Exporter\\src\\MtlKeeper.cpp";
    EXPECT_EQ(errorsWithoutLine(),
              (std::vector<std::string>{
                  "'DamageMask' is not set. Material: 'A', node 'hull'. " + helpers,
                  "DamageMask is not set. Material: 'A', node 'hull'. " + keeper,
                  "'RainMaskMap' is not set as bitmap. Material: 'B', node 'hull'. " + helpers,
                  "RainMaskMap is not set. Material: 'B', node 'hull'. " + keeper,
                  "Deck material misses 'BaseColorMap'. Material: 'C', node 'hull'. " + helpers,
                  "BaseColorMap is not set. Material: 'C', node 'hull'. " + keeper,
                  "Deck material is empty. Material: 'E', node 'hull'. " + keeper}));
}

TEST_F(MaterialTest, FindSubMapPicksSwitchedOnSlotsAndEvenLayers) {
    load(R"({"mapSlots": [
        {"name": "Diffuse Color", "on": false, "map": {"fileName": "off.dds"}},
        {"name": "DIFFUSE COLOR", "map": {"class": ["0x280", 0], "subMaps": [{"name": "l0"}, null, {"name": "l1"}]}},
        {"name": "Bump", "map": {"class": ["0x280", 0], "subMaps": [{}, {}]}},
        {"name": "Opacity", "map": {"name": "plain"}},
        {"name": "Filter Color"}]})");
    host::Mtl* m = mtl(0);
    EXPECT_EQ(exporter::findSubMap(m, "diffuse color", 0)->GetName(), "l0");
    EXPECT_EQ(exporter::findSubMap(m, "Diffuse Color", 1)->GetName(), "l1");  // layer n is sub-map 2n
    EXPECT_EQ(exporter::findSubMap(m, "Diffuse Color", 2), nullptr);
    EXPECT_EQ(exporter::findSubMap(m, "Diffuse Color", -1), nullptr);
    EXPECT_NE(exporter::findSubMap(m, "Bump", 0), nullptr);
    EXPECT_EQ(exporter::findSubMap(m, "Bump", 1), nullptr);  // two sub-maps hold layer 0 only
    EXPECT_EQ(exporter::findSubMap(m, "Opacity", 0)->GetName(), "plain");
    EXPECT_EQ(exporter::findSubMap(m, "Opacity", 1), nullptr);
    EXPECT_EQ(exporter::findSubMap(m, "Filter Color", 0), nullptr);
    EXPECT_EQ(exporter::findSubMap(m, "Missing", 0), nullptr);
}

TEST_F(MaterialTest, ReadTextureTakesTheBareLowerCaseNameAndTheMirrors) {
    load(R"({"mapSlots": [
        {"name": "a", "map": {"fileName": "C:\\Art\\ÄRMEL.Final.DDS", "tiling": 5,
                              "uvTransform": [[1, 0, 0], [0, 3, 0], [0, 0, 1], [0.5, 0.25, 0]]}},
        {"name": "b", "map": {"fileName": "/maps/plain.png", "tiling": 10}},
        {"name": "c", "map": {"class": ["0x280", 0], "fileName": "ignored.dds"}}]})");
    model::Texture texture;
    exporter::readTexture(mtl(0)->GetSubTexmap(0), texture);
    // The name, the wrap modes, and the scale and move of u and v; the whole u column doubles,
    // translation included.
    auto text = [&] {
        return fmt::format("{} {} {} {} {} {} {}", texture.name, texture.wrapU, texture.wrapV,
                           texture.matrix(0, 0), texture.matrix(3, 0), texture.matrix(1, 1),
                           texture.matrix(3, 1));
    };
    EXPECT_EQ(text(), "ärmel.final 4 2 2 1 3 0.25");
    exporter::readTexture(mtl(0)->GetSubTexmap(1), texture);
    EXPECT_EQ(text(), "plain 2 4 1 0 2 0");
    model::Texture kept = texture;
    exporter::readTexture(mtl(0)->GetSubTexmap(2), texture);
    EXPECT_TRUE(texture.empty());
    EXPECT_EQ(texture.wrapV, kept.wrapV);  // a map that is not a bitmap only clears the name
    exporter::readTexture(nullptr, texture);
    EXPECT_TRUE(texture.empty());
    EXPECT_EQ(exporter::baseFileName(std::string(120, 'x') + ".dds").size(), 99u);
}

TEST_F(MaterialTest, OnlyTheOlderStandardClassIsTwoSided) {
    load(R"({"name": "old", "twoSided": true}, {"class": [3, 0], "twoSided": true},
            {"class": ["0x255", 0], "subMaterials": [1, 0]}, {"class": ["0x255", 0], "subMaterials": [0, 1]},
            {"class": ["0x255", 0], "subMaterials": [0]})");
    // A shell material asks its baked material.
    EXPECT_FALSE(exporter::isTwoSided(nullptr));
    const bool twoSided[] = {true, false, true, false, false};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(exporter::isTwoSided(mtl(i)), twoSided[i]) << i;
    }
}

}  // namespace
