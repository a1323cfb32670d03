// The material keeper: which scene materials become model materials, what a standard material
// gives, how texture channels are handed out, when materials are shared, and every message.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "MaterialTestSupport.h"
#include "model/Property.h"
#include "model/VertexSemantic.h"

namespace {

using namespace exporter::test;
using exporter::errorList;

constexpr std::uint32_t kNone = 0xFFFFFFFFu;

float floatUniform(const exporter::PropertiesSetPtr& m, const char* name) {
    float value = -1;
    EXPECT_TRUE(model::getProperty(m->uniforms, name, value)) << name;
    return value;
}

TEST_F(MaterialTest, MaterialsThatAreNotConvertedGiveNothingAndNoMessage) {
    load(R"({"class": ["0x200", 0], "subMaterials": [1]}, {"name": "plain"}, {"class": ["0x100", 0]},
            )" +
         describedMaterial("odd class", R"("materialName": "s")", R"("class": ["0x5", 0])"));
    EXPECT_FALSE(keeper.getMaterial(nullptr, 0, "model::RenderNode", node()));
    // A multi-material (the callers pick a sub-material), one without a description, and two of
    // classes the keeper does not convert.
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_FALSE(get(i)) << i;
    }
    EXPECT_TRUE(errorList().empty());
}

TEST_F(MaterialTest, StandardMaterialTakesItsDescription) {
    load(describedMaterial(
        "Hull",
        R"("materialName": "hull_shader", "depthBias": 3, "decal": 1, "blending": 2,
                              "shadowFlagA": 0, "shadowFlagB": 1, "hasNormals": 0,
                              "uniformScript": "gloss = 0.5; tint = vec3(1, 2, 3);",
                              "textureSlots": [)" +
            textureSlot("Diffuse", "diffuse color", "diffuseScale = 2;") + ", " +
            textureSlot("NormalMap", "Bump") + ", " + textureSlot("DamageNormalMap", "Opacity") + "]",
        R"("twoSided": true, "mapSlots": [)" + bitmapSlot("Diffuse Color", "C:/maps/Hull_D.DDS", 2) + ", " +
            bitmapSlot("Bump", "n.dds", 2) + ", " + bitmapSlot("Opacity", "dn.dds", 3) + "]"));
    auto m = get(0);
    ASSERT_TRUE(m);
    EXPECT_TRUE(errorList().empty()) << errorList().front();
    // Culling 0: a two-sided standard material of the older class.
    EXPECT_EQ(fmt::format("{} {} {} {} {} {} {} {}", m->name, m->materialName, m->depthBias, m->decal,
                          m->blending, m->shadowFlagA, m->shadowFlagB, m->culling),
              "Hull hull_shader 3 1 2 0 1 0");
    EXPECT_EQ(fmt::format("{} {} {}", m->textures[0].name, m->textures[1].name, m->textures[10].name),
              "hull_d n dn");
    // Plain textures each get a channel position of their own, even on the same scene channel.
    EXPECT_EQ(channels(m), (std::vector<std::uint32_t>{2, 2, 3}));
    EXPECT_EQ(m->textureChannels, (std::array<std::uint32_t, 13>{0, 1, kNone, kNone, kNone, kNone, kNone,
                                                                 kNone, kNone, kNone, 2, kNone, kNone}));
    EXPECT_EQ(
        formatText(m->vertexFormat),
        "POSITION0:4 TANGENT0:3 BINORMAL0:3 TEXCOORD0:2 TEXCOORD1:2 TEXCOORD2:2 TANGENT1:3 BINORMAL1:3");
    EXPECT_EQ(m->uniforms.size(), 3u);
    EXPECT_FLOAT_EQ(floatUniform(m, "gloss"), 0.5f);
    EXPECT_FLOAT_EQ(floatUniform(m, "diffuseScale"), 2.0f);
}

TEST_F(MaterialTest, CullingFollowsTheTwoSidedFlagOfTheOlderClassOnly) {
    load(describedMaterial("a", R"("materialName": "s")", R"("class": [3, 0], "twoSided": true)") + ", " +
         describedMaterial("b", R"("materialName": "s")") + ", " +
         describedMaterial("c", R"("materialName": "s", "hasNormals": 1)"));
    EXPECT_EQ(get(0)->culling, 1);
    EXPECT_EQ(get(1)->culling, 1);
    EXPECT_EQ(get(2)->vertexFormat[model::NORMAL0], 3);
}

TEST_F(MaterialTest, NodeClassAndKindAreCheckedOnFirstUseOnly) {
    load(describedMaterial("Glass",
                           R"("materialName": "s", "nodeIds": ["model::RenderNode"], "nodeKinds": [0])") +
         ", " + describedMaterial("Rope", R"("materialName": "s", "nodeKinds": [2])"));
    EXPECT_FALSE(get(0, 0, "model::FakeOmniLightsNode"));
    EXPECT_FALSE(get(1, 0));
    EXPECT_EQ(errorsWithoutLine(),
              (std::vector<std::string>{"Can't use material 'Glass' with node 'hull'. Reason: wrong node "
                                        "id(model::FakeOmniLightsNode).\tFile: Exporter\\src\\MtlKeeper.cpp",
                                        "Can't use material 'Rope' to node 'hull'. Reason: node has wrong "
                                        "type.\tFile: Exporter\\src\\MtlKeeper.cpp"}));

    auto glass = get(0);
    ASSERT_TRUE(glass);
    exporter::clearErrors();
    EXPECT_EQ(get(0, 1, "model::FakeOmniLightsNode"), glass);  // cached: not refused again
    EXPECT_TRUE(errorList().empty());
}

TEST_F(MaterialTest, EqualContentIsSharedButNamesKeepMaterialsApart) {
    std::string shader = R"("materialName": "s", "uniformScript": "a = 1;")";
    load(describedMaterial("Steel", shader) + ", " +
         describedMaterial("Steel", shader, R"("twoSided": true)") + ", " +
         describedMaterial("Iron", shader));
    auto first = get(0);
    auto second = get(1);
    auto other = get(2);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first->culling, 1);  // the culling flag takes no part: the first one's stays
    EXPECT_NE(first, other);
    EXPECT_EQ(get(1), first);

    keeper.clear();
    auto again = get(0);
    EXPECT_NE(again, first);
    EXPECT_TRUE(again->equals(*first));
    EXPECT_TRUE(channels(first).empty());  // forgotten with the caches
}

TEST_F(MaterialTest, TransformedTexturesShareTheirChannelAndPlainOnesDoNot) {
    std::string slots =
        textureSlot("Diffuse", "Diffuse Color") + ", " + textureSlot("Specular", "Specular Color");
    std::string tiled = R"("uvTransform": [[4, 0, 0], [0, 4, 0], [0, 0, 1], [0, 0, 0]])";
    load(describedMaterial("tiled", R"("materialName": "s", "textureSlots": [)" + slots + "]",
                           R"("mapSlots": [)" + bitmapSlot("Diffuse Color", "d.dds") + ", " +
                               bitmapSlot("Specular Color", "s.dds", 1, tiled) + "]") +
         ", " +
         describedMaterial("plain", R"("materialName": "s", "textureSlots": [)" + slots + "]",
                           R"("mapSlots": [)" + bitmapSlot("Diffuse Color", "d.dds") + ", " +
                               bitmapSlot("Specular Color", "s.dds") + "]"));
    auto tiledMaterial = get(0);
    EXPECT_EQ(channels(tiledMaterial), (std::vector<std::uint32_t>{1}));
    EXPECT_EQ(tiledMaterial->textureChannels[2], 0u);
    EXPECT_EQ(tiledMaterial->vertexFormat[model::TEXCOORD1], 0);
    EXPECT_FLOAT_EQ(tiledMaterial->textures[2].matrix(0, 0), 4.0f);
    auto plainMaterial = get(1);
    EXPECT_EQ(channels(plainMaterial), (std::vector<std::uint32_t>{1, 1}));
    EXPECT_EQ(plainMaterial->textureChannels[2], 1u);
}

// A material whose description puts count maps into slots, map i on scene channel channelOf(i).
template <class ChannelOf>
std::string manyTextures(const std::string& name, int count, ChannelOf channelOf) {
    std::string slots, maps;
    for (int i = 0; i < count; ++i) {
        std::string mapName = "m" + std::to_string(i);
        slots += (i ? ", " : "") +
                 textureSlot(std::string(exporter::textureSlotNames[static_cast<std::size_t>(i)]), mapName);
        maps += (i ? ", " : "") + bitmapSlot(mapName, mapName + ".dds", channelOf(i));
    }
    return describedMaterial(name, R"("materialName": "s", "textureSlots": [)" + slots + "]",
                             R"("mapSlots": [)" + maps + "]");
}

TEST_F(MaterialTest, AtMostEightTextureChannels) {
    load(manyTextures("eight", 8, [](int i) { return i + 1; }) + ", " +
         manyTextures("nine", 9, [](int i) { return i + 1; }) + ", " +
         manyTextures("same", 9, [](int) { return 1; }));
    auto eight = get(0);
    ASSERT_TRUE(eight);
    EXPECT_EQ(channels(eight).size(), 8u);
    EXPECT_EQ(eight->vertexFormat[model::TEXCOORD7], 2);
    EXPECT_TRUE(errorList().empty());
    EXPECT_FALSE(get(1));
    EXPECT_FALSE(get(2));
    const std::string tooMany =
        "Too much texture coordinates channels in material: {}. The maximal number of "
        "texture coordinates channels is 8.\t";
    EXPECT_EQ(errorTexts(), (std::vector<std::string>{fmt::format(fmt::runtime(tooMany), "nine"),
                                                      fmt::format(fmt::runtime(tooMany), "same")}));
}

TEST_F(MaterialTest, EntriesWithoutUsableMapsAreSkipped) {
    load(describedMaterial(
        "Chrome",
        R"("materialName": "s", "uniformScript": "base = 1;", "textureSlots": [)" +
            textureSlot("Reflection", "Reflection", "reflected = 1;") + ", " +
            textureSlot("Diffuse", "Ambient Color", "ambientOnly = 1;") + ", " +
            textureSlot("Specular", "Glossiness", "layered = 1;") + ", " +
            textureSlot("Decal", "Opacity", "noBitmap = 1;") + ", " +
            textureSlot("Dirt", "Missing", "missing = 1;") + "]",
        R"("mapSlots": [)" + bitmapSlot("Reflection", "env.dds", 4) + ", " +
            bitmapSlot("Ambient Color", "a.dds", 0) +
            R"(, {"name": "Glossiness", "map": {"class": ["0x280", 0], "subMaps": [null, {"fileName": "g.dds"}]}},
                 {"name": "Opacity", "map": {"class": ["0x281", 0]}}])"));
    auto m = get(0);
    ASSERT_TRUE(m);
    EXPECT_TRUE(errorList().empty());
    // The reflection texture is kept and its text gathered, but it has no coordinates.
    EXPECT_EQ(m->textures[12].name, "env");
    EXPECT_TRUE(channels(m).empty());
    EXPECT_EQ(m->vertexFormat[model::TEXCOORD0], 0);
    EXPECT_TRUE(m->textures[0].empty());  // channel 0
    EXPECT_TRUE(m->textures[2].empty());  // layer 0 of a layered map is an empty sub-map
    EXPECT_TRUE(m->textures[3].empty());  // not a bitmap
    std::vector<std::string> names;
    for (const auto& u : m->uniforms) {
        names.push_back(u->name);
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"base", "reflected"}));
}

TEST_F(MaterialTest, FailuresOfTheDescription) {
    load(describedMaterial("Hull", R"("textureSlots": [)" + textureSlot("Albedo", "Diffuse Color") + "]",
                           R"("mapSlots": [)" + bitmapSlot("Diffuse Color", "d.dds") + "]") +
         ", " + describedMaterial("Empty", "") + ", " +
         describedMaterial("NoMap", R"("textureSlots": [)" + textureSlot("Albedo", "Bump") + "]"));
    EXPECT_FALSE(get(0));
    auto empty = get(1);
    ASSERT_TRUE(empty);  // exported under a stand-in name
    EXPECT_EQ(empty->materialName, "dummy");
    auto noMap = get(2);  // an unknown slot without a map is never looked up
    ASSERT_TRUE(noMap);
    ASSERT_EQ(errorList().size(), 4u);
    const std::vector<std::string> texts = errorsWithoutLine();
    EXPECT_EQ(texts[0], "Empty material name. Material: Hull.\tFile: Exporter\\src\\MtlKeeper.cpp");
    EXPECT_EQ(texts[1],
              "Unknown texture slot name Albedo. Material: Hull. File: Exporter\\src\\MtlKeeper.cpp");
    EXPECT_EQ(texts[2], "Empty material name. Material: Empty.\tFile: Exporter\\src\\MtlKeeper.cpp");
}

TEST_F(MaterialTest, OverridesChangeOnlyUniformsTheShaderDefines) {
    load(describedMaterial("Paint",
                           R"("materialName": "s", "uniformScript": "gloss = 0.5; tint = vec3(1, 1, 1);",
                                        "overrideScript": "gloss = 0.9; shine = 2; glow = 1;")") +
         ", " +
         describedMaterial("Broken", R"("materialName": "s", "uniformScript": "a = 1; b = uint(1, 2);")"));
    auto paint = get(0);
    ASSERT_TRUE(paint);
    EXPECT_FLOAT_EQ(floatUniform(paint, "gloss"), 0.9f);
    EXPECT_EQ(paint->uniforms.size(), 2u);
    ASSERT_EQ(errorList().size(), 1u);
    const std::string& invalid = errorList()[0];
    // Lua's walk decides the order of the two names.
    EXPECT_TRUE(
        invalid.starts_with("The following uniforms: 'shine', 'glow' are ivalid. Material: Paint.\tFile: ") ||
        invalid.starts_with("The following uniforms: 'glow', 'shine' are ivalid. Material: Paint.\tFile: "))
        << invalid;

    exporter::clearErrors();
    auto broken = get(1);
    ASSERT_TRUE(broken);  // kept with what its list holds
    EXPECT_EQ(errorTexts(),
              std::vector<std::string>{"Uniforms: Wrong arguments number in 'uint'. Material: Broken.\t"});
}

}  // namespace
