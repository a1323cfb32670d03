// Materials, maps, parameter blocks, controllers and the material description as the scene
// document gives them to the host operations, and the faults in them.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "host/Constants.h"
#include "host/Control.h"
#include "host/MaterialAttrib.h"
#include "host/ParamBlock.h"
#include "scene/SceneControl.h"
#include "scene/SceneFault.h"
#include "scene/SceneLoader.h"

namespace {

using host::Class_ID;

host::Animatable* subAnim(host::Animatable* object, std::initializer_list<std::string_view> path) {
    for (std::string_view name : path) {
        host::Animatable* found = nullptr;
        for (int i = 0; object && i < object->NumSubs(); ++i) {
            if (object->SubAnimName(i) == name) {
                found = object->SubAnim(i);
                break;
            }
        }
        object = found;
    }
    return object;
}

std::string faultText(const std::string& json) {
    return scenetest::faultIn(json).what;
}

TEST(SceneMaterials, StandardMaterialGetsTheHostDefaults) {
    auto scene = scene::parseScene(R"({"materials": [{"name": "m"}, {"class": ["0x200", 0]}]})");
    auto* standard = dynamic_cast<host::StdMat2*>(scene->materials()[0].get());
    ASSERT_NE(standard, nullptr);
    EXPECT_FALSE(standard->GetTwoSided());
    ASSERT_NE(standard->GetShader(), nullptr);
    EXPECT_FLOAT_EQ(standard->GetShader()->GetGlossiness(), 0.1f);
    ASSERT_EQ(standard->NumSubTexmaps(), 12);
    EXPECT_EQ(standard->GetSubTexmapSlotName(1), "Diffuse Color");
    EXPECT_EQ(standard->GetSubTexmapSlotName(4), "Specular Level");
    EXPECT_EQ(standard->GetSubTexmap(1), nullptr);
    EXPECT_TRUE(standard->SubTexmapOn(1));
    ASSERT_EQ(standard->NumParamBlocks(), 1);
    host::IParamBlock2* maps = standard->GetParamBlock(0);
    EXPECT_EQ(maps->GetDesc()->int_name, "maps");
    EXPECT_EQ(maps->GetParamDef(maps->IndextoID(0))->int_name, "mapAmounts");
    float amount = 0;
    EXPECT_TRUE(maps->GetValue(0, 0, amount, 11));
    EXPECT_EQ(amount, 1.0f);
    EXPECT_FALSE(maps->GetValue(0, 0, amount, 12));
    for (const char* name :
         {"Ambient Color", "Diffuse Color", "Specular Level", "Glossiness", "Self-Illum Color"}) {
        auto* control =
            dynamic_cast<host::Control*>(subAnim(standard, {"Shader Basic Parameters", "Parameters", name}));
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(control->GetInterface(host::I_LISTCTRL), nullptr);
    }

    auto* multi = dynamic_cast<host::StdMat2*>(scene->materials()[1].get());
    EXPECT_EQ(multi->GetShader(), nullptr);
    EXPECT_EQ(multi->NumSubTexmaps(), 0);
    EXPECT_EQ(multi->NumParamBlocks(), 0);
    EXPECT_EQ(multi->NumSubs(), 0);
}

TEST(SceneMaterials, EveryMaterialFieldReachesTheHostOperations) {
    auto scene = scene::parseScene(R"({
        "materials": [{
            "name": "Hull", "twoSided": true, "ambient": [0.1, 0.2, 0.3], "diffuse": [0.4, 0.5, 0.6],
            "shader": {"specularLevel": 0.7, "glossiness": 0.25, "selfIllumColor": [1, 0, 0.5]},
            "mapSlots": [
                {"name": "Diffuse Color", "on": false},
                {"name": "Diffuse Color", "map": {
                    "class": ["0x280", 0], "name": "layers",
                    "subMaps": [{"fileName": "C:\\maps\\Hull_D.dds", "mapChannel": 3, "tiling": 12,
                                 "uvTransform": [[2, 0, 0], [0, 3, 0], [0, 0, 1], [0.5, 0, 0]],
                                 "uOffset": 0.25, "vOffset": -0.5}, null]}}],
            "paramBlocks": [{"internalName": "deck", "params": [
                {"internalName": "base", "localName": "BaseColorMap", "bitmaps": ["a.dds", null]},
                {"localName": "Amounts", "floats": [0.5]}]}],
            "controllers": {"Shader Basic Parameters/Parameters/Diffuse Color": {
                "class": ["0x6A5A1CAB", "0x6BD85E24"], "value": [0.1, 0.1, 0.1],
                "arguments": [{"argument": 7, "controller": {"keys": [[0, [0, 0, 0]], [4800, [1, 1, 1]]]}},
                              {"argument": -1, "controller": null}]},
                "Shader Basic Parameters/Parameters/Ambient Color": null},
            "attributes": [{"class": ["0x7CB6596", "0x7E112E78"], "materialName": "hull_shader", "depthBias": 2,
                "decal": true, "uniformScript": "a = 1;", "overrideScript": "a = 2;", "hasNormals": 0,
                "blending": 3, "shadowFlagA": 0, "shadowFlagB": 1, "nodeIds": ["model::RenderNode"],
                "nodeKinds": [0, 2],
                "textureSlots": [{"slotName": "Diffuse", "mapName": "Diffuse Color", "layer": 1,
                                  "uniformText": "b = 2;"}]}]}],
        "nodes": [{"material": "Hull"}]})");
    host::Mtl* mtl = scene->root.GetChildNode(0)->GetMtl();
    ASSERT_EQ(mtl, scene->materials()[0].get());
    auto* standard = dynamic_cast<host::StdMat2*>(mtl);
    EXPECT_TRUE(standard->GetTwoSided());
    EXPECT_EQ(mtl->GetAmbient(), (host::Color{0.1f, 0.2f, 0.3f}));
    EXPECT_EQ(mtl->GetDiffuse(), (host::Color{0.4f, 0.5f, 0.6f}));
    EXPECT_FLOAT_EQ(standard->GetShader()->GetSpecularLevel(), 0.7f);
    EXPECT_EQ(standard->GetShader()->GetSelfIllumColor(), (host::Color{1, 0, 0.5f}));

    ASSERT_EQ(mtl->NumSubTexmaps(), 2);
    EXPECT_FALSE(mtl->SubTexmapOn(0));
    host::Texmap* layers = mtl->GetSubTexmap(1);
    ASSERT_NE(layers, nullptr);
    EXPECT_EQ(layers->ClassID(), Class_ID(0x280, 0));
    ASSERT_EQ(layers->NumSubTexmaps(), 2);
    EXPECT_EQ(layers->GetSubTexmap(1), nullptr);
    auto* bitmap = dynamic_cast<host::BitmapTex*>(layers->GetSubTexmap(0));
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(bitmap->ClassID(), Class_ID(host::BMTEX_CLASS_ID, 0));
    EXPECT_EQ(bitmap->GetTextureTiling(), host::U_MIRROR | host::V_MIRROR);
    host::Matrix3 uv;
    bitmap->GetUVTransform(uv);
    // File, channel, the second row and the translation of the transform, the offsets.
    EXPECT_EQ(fmt::format("{} {} {} {} {} {} {} {} {} {}", bitmap->GetMapName(), bitmap->GetMapChannel(),
                          uv.GetRow(1).x, uv.GetRow(1).y, uv.GetRow(1).z, uv.GetTrans().x, uv.GetTrans().y,
                          uv.GetTrans().z, bitmap->GetUVGen()->GetUOffs(0), bitmap->GetUVGen()->GetVOffs(0)),
              "C:\\maps\\Hull_D.dds 3 0 3 0 0.5 0 0 0.25 -0.5");

    ASSERT_EQ(mtl->NumParamBlocks(), 1);
    host::IParamBlock2* block = mtl->GetParamBlock(0);
    EXPECT_EQ(block->GetDesc()->int_name, "deck");
    EXPECT_EQ(block->GetLocalName(0), "BaseColorMap");
    ASSERT_NE(block->GetBitmap(0, 0, 0), nullptr);
    EXPECT_EQ(block->GetBitmap(0, 0, 0)->bi.Name(), "a.dds");
    EXPECT_EQ(block->GetBitmap(0, 0, 1), nullptr);
    EXPECT_EQ(block->GetBitmap(1, 0, 0), nullptr);  // a float parameter holds no bitmap
    EXPECT_EQ(block->GetParamDef(2), nullptr);

    EXPECT_EQ(subAnim(mtl, {"Shader Basic Parameters", "Parameters", "Ambient Color"}), nullptr);
    EXPECT_NE(subAnim(mtl, {"Shader Basic Parameters", "Parameters", "Glossiness"}), nullptr);
    auto* list = dynamic_cast<host::ArgumentListControl*>(
        subAnim(mtl, {"Shader Basic Parameters", "Parameters", "Diffuse Color"}));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->ClassID(), host::COLOR_ARGUMENT_LIST_CLASS_ID);
    EXPECT_EQ(list->SuperClassID(), host::CTRL_POINT3_CLASS_ID);
    auto* entries = static_cast<host::IListControl*>(list->GetInterface(host::I_LISTCTRL));
    ASSERT_NE(entries, nullptr);
    EXPECT_EQ(entries->GetListCount(), 2);
    ASSERT_EQ(list->NumArgumentSubs(), 2);
    EXPECT_EQ(list->GetSubArgument(0), 7);
    EXPECT_EQ(list->GetSubArgument(1), -1);
    EXPECT_EQ(list->GetSubController(1), nullptr);
    host::Control* keyed = list->GetSubController(0);
    ASSERT_EQ(keyed->NumKeys(), 2);
    EXPECT_EQ(keyed->GetKeyTime(1), 4800);
    EXPECT_TRUE(keyed->IsKeyable());
    host::Point3 value;
    keyed->GetValue(1200, value);
    EXPECT_EQ(value, host::Point3(0.25f, 0.25f, 0.25f));  // linear between keys
    keyed->GetValue(9600, value);
    EXPECT_EQ(value, host::Point3(1, 1, 1));  // the last key holds

    auto* attrib = dynamic_cast<host::MaterialAttrib*>(mtl->GetCustAttribContainer()->GetCustAttrib(0));
    ASSERT_NE(attrib, nullptr);
    EXPECT_TRUE(attrib->acceptsNodeId("model::RenderNode"));
    EXPECT_FALSE(attrib->acceptsNodeId("model::FakeOmniLightsNode"));
    EXPECT_TRUE(attrib->acceptsNodeKind(2));
    EXPECT_FALSE(attrib->acceptsNodeKind(1));
    host::MaterialDescription* d = attrib->description();
    EXPECT_EQ(fmt::format("{}|{}|{}|{}|{}|{}|{}|{}|{}", d->materialName(), d->depthBias(), d->decal(),
                          d->uniformScript(), d->overrideScript(), d->hasNormals(), d->blending(),
                          d->shadowFlagA(), d->shadowFlagB()),
              "hull_shader|2|1|a = 1;|a = 2;|0|3|0|1");
    ASSERT_EQ(d->textureCount(), 1u);
    host::TextureSlotDesc slot;
    d->textureSlot(0, slot);
    EXPECT_EQ(fmt::format("{}|{}|{}|{}", slot.slotName, slot.mapName, slot.layer, slot.uniformText),
              "Diffuse|Diffuse Color|1|b = 2;");
}

TEST(SceneMaterials, AnAttributeWithoutListsAcceptsEveryNode) {
    auto scene =
        scene::parseScene(R"({"materials": [{"attributes": [{"class": ["0x7CB6596", "0x7E112E78"]}]}]})");
    auto* attrib = dynamic_cast<host::MaterialAttrib*>(
        scene->materials()[0]->GetCustAttribContainer()->GetCustAttrib(0));
    ASSERT_NE(attrib, nullptr);
    EXPECT_TRUE(attrib->acceptsNodeId("model::SegmentsNode"));
    EXPECT_TRUE(attrib->acceptsNodeKind(1));
    EXPECT_EQ(attrib->description()->shadowFlagA(), 1);
    EXPECT_EQ(attrib->description()->hasNormals(), 1);
}

TEST(SceneMaterials, ControllersWithoutArgumentsOfferNoList) {
    scene::SceneControl plain;
    plain.value = {2, 0, 0, 0};
    float f = 0;
    plain.GetValue(100, f);
    EXPECT_EQ(f, 2.0f);
    EXPECT_EQ(plain.GetInterface(host::I_LISTCTRL), nullptr);
    EXPECT_EQ(plain.NumArgumentSubs(), 0);
    plain.isList = true;
    EXPECT_NE(plain.GetInterface(host::I_LISTCTRL), nullptr);
}

TEST(SceneMaterials, FaultsNameTheirPath) {
    EXPECT_EQ(faultText(R"({"materials": [{"name": "a"}, {"name": "a"}], "nodes": [{"material": "a"}]})"),
              "nodes[0].material: the name \"a\" is given to materials 0 and 1: refer by index");
    EXPECT_EQ(faultText(R"({"materials": [{"name": "a"}], "nodes": [{"material": "b"}]})"),
              "nodes[0].material: no material is named \"b\"");
    EXPECT_EQ(faultText(R"({"materials": [{"attributes": [{"class": [1, 2], "materialName": "x"}]}]})"),
              "materials[0].attributes[0].materialName: only the material description attribute "
              "(0x7CB6596, 0x7E112E78) has this field");
    EXPECT_EQ(faultText(R"({"materials": [{"mapSlots": [{"map": {"subMaps": [{"tiling": 16}]}}]}]})"),
              "materials[0].mapSlots[0].map.subMaps[0].tiling: expected an integer from 0 to 15");
    EXPECT_EQ(faultText(R"({"materials": [{"controllers": {"A/B": {"keys": [[10, 1], [10, 2]]}}}]})"),
              "materials[0].controllers.A/B.keys[1]: keys must be in ascending order of time");
    EXPECT_EQ(faultText(R"({"materials": [{"controllers": {"A": {"value": [1, 2, 3, 4, 5]}}}]})"),
              "materials[0].controllers.A.value: expected a number or an array of 1 to 4 numbers");
    EXPECT_EQ(faultText(R"({"materials": [{"controllers": {"A": {"arguments": [{"argument": 1.5}]}}}]})"),
              "materials[0].controllers.A.arguments[0].argument: expected an integer");
    EXPECT_EQ(faultText(R"({"materials": [{"attributes": [{"class": ["0x7CB6596", "0x7E112E78"],
              "depthBias": 256}]}]})"),
              "materials[0].attributes[0].depthBias: expected an integer from 0 to 255");
}

}  // namespace
