// Uniforms read from the scene material: constants, argument-driven animations, UV offsets with
// their sign, key sampling and reduction, and every failure text.

#include <gtest/gtest.h>

#include "MaterialTestSupport.h"
#include "exporter/KeyReducer.h"
#include "exporter/MaxHandler.h"
#include "model/AnimatedProperty.h"
#include "model/Property.h"

namespace {

using namespace exporter::test;
using exporter::errorList;

// A float or colour argument list controller with one entry on argument arg holding keys
// (ticks and value as JSON), and base as its own value.
std::string argumentList(bool color, int arg, const std::string& keys, const std::string& base = "0") {
    return std::string(R"({"class": )") +
           (color ? R"(["0x6A5A1CAB", "0x6BD85E24"])" : R"(["0x1B0625F8", "0x361664D0"])") +
           R"(, "value": )" + base + R"(, "arguments": [{"argument": )" + std::to_string(arg) +
           R"(, "controller": {"keys": )" + keys + "}}]}";
}

class MaxHandlerTest : public MaterialTest {
protected:
    // Converts one standard material with the given uniform script and material fields.
    exporter::PropertiesSetPtr convert(const std::string& script, const std::string& fields = "") {
        load(
            describedMaterial("Paint", R"("materialName": "s", "uniformScript": ")" + script + "\"", fields));
        return get(0);
    }
    template <class P>
    P* uniform(const exporter::PropertiesSetPtr& m, const char* name) {
        auto* p = model::findPropertyAs<P>(m->uniforms, name);
        EXPECT_NE(p, nullptr) << name;
        return p;
    }
};

using Vec2 = model::Property<osg::Vec2f>;
using Vec3 = model::Property<osg::Vec3f>;
using Float = model::Property<float>;
template <class T>
using Keys = std::vector<model::AnimationKey<T>>;

TEST_F(MaxHandlerTest, ConstantsComeFromTheMaterialAtTimeZero) {
    auto m = convert(
        "amb = AMBIENT_COLOR(); dif = DIFFUSE_COLOR(); glow = SELF_ILLUMINATION_COLOR(); spec = "
        "SPECULAR_LEVEL(); "
        "gloss = GLOSSINESS(); glossAmount = GLOSSINESS_AMOUNT(); specAmount = SPECULAR_LEVEL_AMOUNT(); "
        "filter = FILTER_COLOR_AMOUMT(); uv = DIFFUSE_UV_OFFSET(); decalUv = DECAL_UV_OFFSET();",
        R"("ambient": [0.1, 0.2, 0.3], "diffuse": [0.4, 0.5, 0.6],
           "shader": {"specularLevel": 0, "glossiness": 0.25, "selfIllumColor": [1, 0, 0]},
           "paramBlocks": [{"internalName": "maps", "params": [{"internalName": "other", "floats": [9]},
               {"internalName": "mapAmounts", "floats": [0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7]}]}],
           "mapSlots": [{"name": "Diffuse Color", "map": {"uOffset": 0.25, "vOffset": -0.5}}])");
    ASSERT_TRUE(m);
    EXPECT_TRUE(errorList().empty()) << errorList().front();
    EXPECT_EQ(uniform<Vec3>(m, "amb")->value, (osg::Vec3f{{0.1f, 0.2f, 0.3f}}));
    EXPECT_EQ(uniform<Vec3>(m, "dif")->value, (osg::Vec3f{{0.4f, 0.5f, 0.6f}}));
    EXPECT_EQ(uniform<Vec3>(m, "glow")->value, (osg::Vec3f{{1, 0, 0}}));
    EXPECT_EQ(uniform<Float>(m, "spec")->value, 0.0001f);  // the floor of constants
    EXPECT_EQ(uniform<Float>(m, "gloss")->value, 0.25f);
    EXPECT_EQ(uniform<Float>(m, "glossAmount")->value, 0.4f);  // map index 3 reads entry 4
    EXPECT_EQ(uniform<Float>(m, "specAmount")->value, 0.3f);   // and 4 reads 3
    EXPECT_EQ(uniform<Float>(m, "filter")->value, 0.7f);
    EXPECT_EQ(uniform<Vec2>(m, "uv")->value, (osg::Vec2f{{0.25f, -0.5f}}));  // constants keep their sign
    EXPECT_EQ(uniform<Vec2>(m, "decalUv")->value, (osg::Vec2f{}));           // a plain map has no layer 1
}

TEST_F(MaxHandlerTest, DrivenParametersBecomeAnimations) {
    auto m = convert("spec = SPECULAR_LEVEL(); amb = AMBIENT_COLOR(); bump = BUMP_AMOUNT();",
                     R"("controllers": {
                         "Shader Basic Parameters/Parameters/Specular Level": )" +
                         argumentList(false, 3, "[[0, 0], [2, 0.0005], [4800, 0.5]]", "0.25") + R"(,
                         "Shader Basic Parameters/Parameters/Ambient Color": )" +
                         argumentList(true, 1, "[[2400, [1, 2, 3]]]", "[1, 1, 1]") + R"(,
                         "Maps/Bump Amount": )" +
                         argumentList(false, 2, "[[0, 1]]") + "}");
    ASSERT_TRUE(m);
    EXPECT_TRUE(errorList().empty()) << errorList().front();
    auto* spec = uniform<model::AnimatedProperty<float>>(m, "spec");
    ASSERT_NE(spec, nullptr);
    EXPECT_EQ(spec->argument, 3u);
    // The base added, the key within 0.001 of its neighbour dropped; no floor.
    EXPECT_EQ(spec->keys, (Keys<float>{{0.0, 0.25f}, {1.0, 0.75f}}));
    auto* amb = uniform<model::AnimatedProperty<osg::Vec3f>>(m, "amb");
    ASSERT_NE(amb, nullptr);
    EXPECT_EQ(amb->keys, (Keys<osg::Vec3f>{{0.5, {{2, 3, 4}}}}));
    EXPECT_EQ(uniform<model::AnimatedProperty<float>>(m, "bump")->argument, 2u);
}

TEST_F(MaxHandlerTest, AnimatedOffsetsNegateU) {
    std::string onlyV = R"("mapSlots": [{"name": "Diffuse Color", "map": {"uOffset": 0.5, "vOffset": 9,
        "controllers": {"Coordinates/Parameters/V Offset": )" +
                        argumentList(false, 4, "[[0, 1], [4800, 2]]") + "}}}]";
    auto m = convert("uv = DIFFUSE_UV_OFFSET();", onlyV);
    auto* uv = uniform<model::AnimatedProperty<osg::Vec2f>>(m, "uv");
    ASSERT_NE(uv, nullptr);
    EXPECT_EQ(uv->argument, 4u);
    EXPECT_EQ(uv->keys, (Keys<osg::Vec2f>{{0.0, {{-0.5f, 1}}}, {1.0, {{-0.5f, 2}}}}));

    std::string both = R"("mapSlots": [{"name": "Diffuse Color", "map": {"controllers": {
        "Coordinates/Parameters/U Offset": )" +
                       argumentList(false, 4, "[[0, 1], [4800, 3]]") + R"(,
        "Coordinates/Parameters/V Offset": )" +
                       argumentList(false, 4, "[[2400, 5]]") + "}}}]";
    m = convert("uv = DIFFUSE_UV_OFFSET();", both);
    uv = uniform<model::AnimatedProperty<osg::Vec2f>>(m, "uv");
    ASSERT_NE(uv, nullptr);
    // U sampled between its keys where V has one.
    EXPECT_EQ(uv->keys, (Keys<osg::Vec2f>{{0.0, {{-1, 5}}}, {0.5, {{-2, 5}}}, {1.0, {{-3, 5}}}}));
}

TEST_F(MaxHandlerTest, FailureTexts) {
    struct Case {
        std::string script, fields, text;
    };
    std::string layered =
        R"("mapSlots": [{"name": "Diffuse Color", "map": {"class": ["0x280", 0], "subMaps": [{},
        null, {"controllers": {"Coordinates/Parameters/U Offset": )" +
        argumentList(false, 1, "[[0, 1]]") + R"(, "Coordinates/Parameters/V Offset": )" +
        argumentList(false, 2, "[[0, 1]]") + "}}]}}]";
    std::string twoArguments = R"("controllers": {"Shader Basic Parameters/Parameters/Glossiness": {
        "class": ["0x1B0625F8", "0x361664D0"], "arguments": [{"argument": 1, "controller": {}},
                                                             {"argument": 2, "controller": {}}]}})";
    std::string twoColorArguments = R"("controllers": {"Shader Basic Parameters/Parameters/Diffuse Color": {
        "class": ["0x6A5A1CAB", "0x6BD85E24"], "arguments": [{"argument": 1, "controller": {}},
                                                             {"argument": 2, "controller": {}}]}})";
    const Case cases[] = {
        {"a = AMBIENT_COLOR();",
         R"("controllers": {"Shader Basic Parameters/Parameters/Ambient Color": null})",
         "Can't get parameter Shader Basic Parameters->Diffuse Color."},
        {"a = SELF_ILLUMINATION_COLOR();", R"("controllers": {"Shader Basic Parameters": null})",
         "Can't get parameter Shader Basic Parameters->Self-Illum Color."},
        {"a = SPECULAR_LEVEL();",
         R"("controllers": {"Shader Basic Parameters/Parameters/Specular Level": null})",
         "Can't get parameter Shader Basic Parameters->Specular Level."},
        {"a = GLOSSINESS();", R"("controllers": {"Shader Basic Parameters/Parameters/Glossiness": null})",
         "Can't get parameter Shader Basic Parameters->Glossiness."},
        {"a = GLOSSINESS();", R"("shader": null)", "Can't get shader from material 'Paint'."},
        {"a = SELF_ILLUMINATION_COLOR();", R"("shader": null)", "Can't get shader from material 'Paint'."},
        {"a = OPACITY_AMOUNT();", R"("paramBlocks": [])", "Can't set uniform 'a' from material 'Paint'."},
        {"a = DIFFUSE_COLOR(1);", "", "Wrong arguments number in 'DIFFUSE_COLOR'."},
        {"a = DECAL_UV_OFFSET();", layered, "Animated u and v offsets must have the same handle."},
        {"a = GLOSSINESS();", twoArguments,
         "Argument with name 'a' MUST have only one argument per parameter. Obj: Paint."},
        {"a = DIFFUSE_COLOR();", twoColorArguments,
         "Light source MUST have only one argument per parameter.Obj: Paint."},
    };
    for (const Case& c : cases) {
        exporter::clearErrors();
        keeper.clear();
        EXPECT_TRUE(convert(c.script, c.fields)) << c.script;
        EXPECT_EQ(errorTexts(), std::vector<std::string>{"Uniforms: " + c.text + " Material: Paint.\t"})
            << c.script;
    }
}

TEST_F(MaxHandlerTest, OnlyTheTableIsOfferedToTheHandler) {
    model::PropertyList list;
    exporter::MaxHandler handler(&keeper, nullptr, list);
    EXPECT_TRUE(handler.accepts("x", {"FILTER_COLOR_AMOUMT"}));
    EXPECT_FALSE(handler.accepts("x", {"FILTER_COLOR_AMOUNT"}));
    EXPECT_FALSE(handler.accepts("x", {"vec2", "1", "2"}));
    EXPECT_FALSE(handler.accepts("x", {}));
    handler.handle("x", {"vec2"});  // not in the table: nothing happens, the material is not read
    EXPECT_TRUE(list.empty());
    // Other handlers still get their entries.
    auto m = convert("a = vec2(1, 2); b = GLOSSINESS();");
    ASSERT_TRUE(m);
    EXPECT_EQ(m->uniforms.size(), 2u);
}

TEST(KeyReducer, SamplingAndReduction) {
    using Keys = std::vector<model::AnimationKey<float>>;
    EXPECT_EQ(exporter::sampleKeys({}, 1.0), 0.0f);
    Keys keys{{0, 1}, {1, 3}, {3, 7}};
    EXPECT_EQ(exporter::sampleKeys(keys, -1), 1.0f);
    EXPECT_EQ(exporter::sampleKeys(keys, 0.5), 2.0f);
    EXPECT_EQ(exporter::sampleKeys(keys, 2), 5.0f);
    EXPECT_EQ(exporter::sampleKeys(keys, 4), 7.0f);

    Keys held{{2, 1}, {0, 1}, {1, 1}, {1.0005, 1.0005f}};
    EXPECT_TRUE(exporter::sortAndReduceKeys(held, 0.001));
    // A value that holds over time keeps its keys: only keys near in time and value go.
    EXPECT_EQ(held, (Keys{{0, 1}, {1, 1}, {2, 1}}));
    EXPECT_FALSE(exporter::sortAndReduceKeys(held, 0.001));
}

}  // namespace
