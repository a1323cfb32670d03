#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <locale>

#include "UserTextTestSupport.h"
#include "model/AnimatedProperty.h"
#include "model/ArgumentProperty.h"
#include "model/Property.h"
#include "model/PropertyCreators.h"
#include "usertext/AnimatedPropertiesHandler.h"
#include "usertext/ArrayHandler.h"
#include "usertext/PropertiesHandler.h"
#include "usertext/WriteUserText.h"

namespace lu::test {
namespace {

// The three handlers of a node's text, as a caller sets them up.
class HandlersTest : public UserTextTest {
protected:
    FuncHandlers handlers() {
        return {FuncHandlerPtr(new PropertiesHandler(properties)),
                FuncHandlerPtr(new AnimatedPropertiesHandler(properties)),
                FuncHandlerPtr(new ArrayHandler(arrays))};
    }
    void parseAll(const std::string& text) { parseUserText(text, handlers()); }
    std::string failureOf(const std::string& text) { return failure(text, handlers()); }

    template <class P>
    P& only() {
        EXPECT_EQ(properties.size(), 1u);
        auto* p = properties.empty() ? nullptr : dynamic_cast<P*>(properties.front().get());
        if (p == nullptr) {
            throw std::runtime_error("no property of the expected class");
        }
        return *p;
    }

    model::PropertyList properties;
    FloatArrays arrays;
};

TEST_F(HandlersTest, StaticPropertiesAreMadeByTheirClassNames) {
    parseAll(
        "f = 1.5; u = uint(7); s = \"text\"; a = vec2(1, 2); b = vec3(1, 2, 3); c = vec4(1, 2, 3, 4); t = "
        "true");
    ASSERT_EQ(properties.size(), 7u);
    auto find = [&](const char* name) { return model::findProperty(properties, name); };
    EXPECT_EQ(find("a")->className(), "model::Property<osg::Vec2f>");
    EXPECT_EQ(find("b")->className(), "model::Property<osg::Vec3f>");
    // The typed getters find only a property of their own class.
    float f = 0;
    std::uint32_t u = 0;
    std::string s;
    osg::Vec4f c;
    EXPECT_TRUE(model::getProperty(properties, "f", f) && f == 1.5f);
    EXPECT_TRUE(model::getProperty(properties, "t", f) && f == 1.0f);
    EXPECT_TRUE(model::getProperty(properties, "u", u) && u == 7u);
    EXPECT_TRUE(model::getProperty(properties, "s", s) && s == "text");
    EXPECT_TRUE(model::getProperty(properties, "c", c));
    EXPECT_EQ(c, (osg::Vec4f{{1, 2, 3, 4}}));
}

// Every failure text of the handlers, each provoked alone; nothing is stored by a failed text.
TEST_F(HandlersTest, FailureTexts) {
    const std::pair<const char*, const char*> cases[] = {
        {"key = uint(1, 2)", "Wrong arguments number in 'uint'."},
        {"key = uint()", "Wrong arguments number in 'uint'."},
        {"key = vec2(1)", "Wrong arguments number in 'vec2'."},
        {"key = vec3(1, 2, 3, 4)", "Wrong arguments number in 'vec3'."},
        {"key = vec4(1, 2, 3)", "Wrong arguments number in 'vec4'."},
        {"key = argument(-1)", "Invalid argument in property 'key'."},
        {"key = argument(1, 2)", "Wrong arguments number in 'argument'."},
        {"key = animation(3, 0.0)", "Wrong arguments number in 'animation'."},
        {"key = animation(3, 0.0, 1.0, 2.0)", "Wrong arguments number in 'animation'."},
        // The form without an argument gives the same text as the form with one.
        {"key = anim(0, 1, 2)", "Wrong arguments number in 'animation'."},
        {"key = anim(0)", "Wrong arguments number in 'animation'."},
        // A vec2 animation takes exactly one key, a vec3 animation an odd number of them.
        {"key = animation_vec2(1, 0.0, vec2(1, 2), 1.0, vec2(3, 4))",
         "Invalid animation set in 'animation_vec2'."},
        {"key = animation_vec2(1, 0.0, vec2(1))", "Wrong arguments number in 'animation_vec2'."},
        {"key = animation_vec2(1, 0.0, vec3(1, 2))", "Invalid animation set in 'animation_vec2'."},
        {"key = animation_vec3(1, 0.0, vec3(1, 2, 3), 1.0, vec3(4, 5, 6))",
         "Wrong arguments number in 'animation_vec3'."},
        {"key = animation_vec4(-1, 0.0, vec4(1, 2, 3, 4))", "Parameter 'key' must be positive."},
        {"key = animation_vec4(1, 0, vec3(1, 2, 3), 9)", "Invalid animation set in 'animation_vec4'."},
        {"key = animation_vec4(1, 0, vec4(1, 2, 3))", "Wrong arguments number in 'animation_vec4'."},
        {"key = animation_vec3(1, 0, vec2(1, 2), 3)", "Invalid animation set in 'animation_vec3'."},
        {"key = animation_vec2(-2, 0, vec2(1, 2))", "Parameter 'key' must be positive."},
        // A last key whose tag is there but whose components are not.
        {"key = animation_vec2(1, 0, vec2(1, 2), vec2(3))", "Wrong arguments number in 'vec2'."},
        {"key = animation_vec3(1, 0, vec3(1, 2, 3), 5, vec3())", "Wrong arguments number in 'vec3'."},
        {"key = animation_vec4(1, 0, vec4(1, 2, 3, 4), 1, vec4())", "Wrong arguments number in 'vec4'."},
        {"other = array()", "Wrong arguments number in 'array'."},
    };
    for (const auto& [text, message] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(failureOf(text), message);
        EXPECT_TRUE(properties.empty());
        EXPECT_TRUE(arrays.empty());
    }
}

// Numbers are read as a classic stream reads them, whatever the process's locale.
TEST_F(HandlersTest, NumbersAreReadInTheClassicLocale) {
    struct CommaDecimal : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };
    const std::locale previous = std::locale::global(std::locale(std::locale::classic(), new CommaDecimal));
    parseAll("a = vec2(\"1.5abc\", \"x\"); u = uint(\"7.9\"); big = uint(\"99999999999\")");
    std::locale::global(previous);

    osg::Vec2f a;
    std::uint32_t u = 0;
    EXPECT_TRUE(model::getProperty(properties, "a", a));
    EXPECT_EQ(a, (osg::Vec2f{{1.5f, 0.0f}}));
    EXPECT_TRUE(model::getProperty(properties, "u", u) && u == 7u);
    EXPECT_TRUE(model::getProperty(properties, "big", u));
    EXPECT_EQ(u, 0xFFFFFFFFu);
}

TEST_F(HandlersTest, ArgumentAndFloatAnimations) {
    parseAll("key = argument(12)");
    EXPECT_EQ(only<model::ArgumentProperty>().argument, 12u);

    properties.clear();
    parseAll("key = animation(3, 0.0, 1.0)");
    auto& p = only<model::AnimatedFloatProperty>();
    EXPECT_EQ(p.name, "key");
    EXPECT_EQ(p.argument, 3u);
    EXPECT_EQ(p.keys, (std::vector<model::AnimationKey<float>>{{0.0, 1.0f}}));

    // Keys keep the order of the text; they are not sorted.
    properties.clear();
    parseAll("key = anim(5, 1, 0.25, 2)");
    auto& q = only<model::AnimatedFloatProperty>();
    EXPECT_EQ(q.argument, model::IAnimatedProperty::kNoArgument);
    EXPECT_EQ(q.keys, (std::vector<model::AnimationKey<float>>{{5.0, 1.0f}, {0.25, 2.0f}}));
}

TEST_F(HandlersTest, VectorAnimations) {
    parseAll("key = animation_vec2(1, 0.5, vec2(1, 2))");
    auto& two = only<model::AnimatedVec2fProperty>();
    EXPECT_EQ(two.argument, 1u);
    EXPECT_EQ(two.keys, (std::vector<model::AnimationKey<osg::Vec2f>>{{0.5, {{1, 2}}}}));

    properties.clear();
    parseAll("key = animation_vec3(2, 0, vec3(1, 2, 3), 1, vec3(4, 5, 6), 2, vec3(7, 8, 9))");
    auto& three = only<model::AnimatedVec3fProperty>();
    ASSERT_EQ(three.keys.size(), 3u);
    EXPECT_EQ(three.keys[2], (model::AnimationKey<osg::Vec3f>{2.0, {{7, 8, 9}}}));

    properties.clear();
    parseAll("key = animation_vec4(4, 1, vec4(1, 2, 3, 4), 0, vec4(5, 6, 7, 8))");
    auto& four = only<model::AnimatedVec4fProperty>();
    EXPECT_EQ(four.argument, 4u);
    ASSERT_EQ(four.keys.size(), 2u);
    EXPECT_EQ(four.keys[1], (model::AnimationKey<osg::Vec4f>{0.0, {{5, 6, 7, 8}}}));
}

TEST_F(HandlersTest, Arrays) {
    parseAll("key = array(1, 2.5, -3)");
    EXPECT_TRUE(properties.empty());
    ASSERT_EQ(arrays.count("key"), 1u);
    EXPECT_EQ(arrays["key"], (std::vector<float>{1.0f, 2.5f, -3.0f}));

    // A table holds a key once: of a repeated key, Lua keeps the last.
    parseAll("key = array(1, 2); key = array(3, 4)");
    EXPECT_EQ(arrays["key"], (std::vector<float>{3.0f, 4.0f}));
    EXPECT_EQ(arrays.size(), 1u);
}

TEST_F(HandlersTest, KindsAreComparedExactly) {
    nq::Ptr<RecordingHandler> rest(new RecordingHandler);
    FuncHandlers all = handlers();
    all.push_back(rest);
    parseUserText("a = {\"Float\", 1}; b = {\"vec2 \", 1, 2}; c = {\"arrays\", 1}", all);
    EXPECT_TRUE(properties.empty());
    EXPECT_TRUE(arrays.empty());
    EXPECT_EQ(rest->entries.size(), 3u);
}

TEST_F(HandlersTest, WrittenTextHasTheStatementsAndArrays) {
    properties.push_back(model::createFloatProperty("f", 1.5f));
    properties.push_back(model::createStringProperty("s", "x"));
    properties.push_back(model::createVec2fProperty("v", osg::Vec2f{{1, 2}}));
    properties.push_back(model::createArgumentProperty("g", 3));
    arrays["a"] = {1.0f, 2.5f};
    std::string out = "head";
    writeUserText(properties, arrays, out);
    EXPECT_EQ(out,
              "head\r\nf = 1.500000;\r\ns = \"x\";\r\nv = vec2(1.000000,2.000000);\r\ng = argument(3);\r\na "
              "= array(1.000000,2.500000);");

    FloatArrays empty{{"e", {}}};
    out.clear();
    writeUserText({}, empty, out);
    EXPECT_EQ(out, "\r\ne = array();");
}

// What is written reads back as the same properties and arrays. (An unsigned value is written as
// a plain number and so reads back as a float; animated vectors are written in a form that only
// the float animation reads.)
TEST_F(HandlersTest, WrittenTextParsesBack) {
    model::PropertyList original{
        model::createFloatProperty("f", 0.25f),
        model::createStringProperty("s", "a|b"),
        model::createVec3fProperty("v", osg::Vec3f{{1, -2, 3.5f}}),
        model::createVec4fProperty("w", osg::Vec4f{{0, 1, 0, 1}}),
        model::createArgumentProperty("g", 7),
        model::createAnimatedProperty<model::AnimatedFloatProperty>("k", 2, {{0.0, 1.0f}, {1.5, -2.0f}}),
    };
    FloatArrays originalArrays{{"a", {1.0f, 2.5f}}, {"b", {-1.0f}}};
    std::string text;
    writeUserText(original, originalArrays, text);

    parseAll(text);
    EXPECT_TRUE(model::equalPropertyLists(properties, original)) << text;
    EXPECT_EQ(arrays, originalArrays);
}

}  // namespace
}  // namespace lu::test
