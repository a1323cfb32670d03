#include <gtest/gtest.h>

#include <stdexcept>

#include "ByteSink.h"
#include "core/ExtException.h"
#include "model/IPropertyVisitor.h"
#include "model/ObjectRegistry.h"
#include "model/PropertyCreators.h"
#include "model/io/IBinaryFileR.h"

namespace {

using namespace model;
using testing_support::ByteSink;
using testing_support::Expect;

TEST(Property, EveryClassIsRegisteredUnderItsFileNameWithItsDefaults) {
    struct Expected {
        std::string_view key;
        std::string_view tag;
        bool animated;
    };
    const Expected all[] = {
        {"model::Property<float>", "FLT1", false},
        {"model::Property<unsigned int>", "INT1", false},
        {"model::Property<osg::Vec2f>", "FLT2", false},
        {"model::Property<osg::Vec3f>", "FLT3", false},
        {"model::Property<osg::Vec4f>", "FLT4", false},
        {"model::Property<const char*>", "STRG", false},
        {"model::ArgumentProperty", "AARG", true},
        {"model::AnimatedProperty<float>", "AFL1", true},
        {"model::AnimatedProperty<osg::Vec2f>", "AFL2", true},
        {"model::AnimatedProperty<osg::Vec3f>", "AFL3", true},
        {"model::AnimatedProperty<osg::Vec4f>", "AFL4", true},
    };
    for (const Expected& e : all) {
        SCOPED_TRACE(e.key);
        Ptr<IProperty> p = createAs<IProperty>(e.key);
        ASSERT_TRUE(p);
        EXPECT_EQ(p->className(), e.key);
        EXPECT_EQ(p->tagText(), e.tag);
        EXPECT_EQ(p->name, "UnNamed");
        EXPECT_EQ(p->isAnimated(), e.animated);
        if (e.animated) {
            EXPECT_EQ(static_cast<IAnimatedProperty&>(*p).argument, 0xFFFFFFFFu);
        }
    }
    // The typed creators make registered objects too, with the fields they were given.
    Ptr<UIntProperty> version = createUIntProperty("__VERSION__", 3);
    EXPECT_EQ(version->registry, &ObjectRegistry::instance());
    EXPECT_EQ(version->value, 3u);
    auto animated = createAnimatedProperty<AnimatedFloatProperty>("k", 2, {{1.0, 5.0f}});
    EXPECT_EQ(animated->registry, &ObjectRegistry::instance());
    EXPECT_EQ(animated->argument, 2u);
    ASSERT_EQ(animated->keys.size(), 1u);
    EXPECT_EQ(animated->keys[0].value, 5.0f);
}

// The float, string and argument forms are in the written user text's exact bytes.
TEST(Property, TextIsOneLuaLikeStatement) {
    EXPECT_EQ(UIntProperty("u", 4000000000u).toText(), "u = 4000000000;");
    EXPECT_EQ(Vec2fProperty("v2", {{1, 2}}).toText(), "v2 = vec2(1.000000,2.000000);");
    EXPECT_EQ(Vec3fProperty("v3", {{1, 2, 3}}).toText(), "v3 = vec3(1.000000,2.000000,3.000000);");
    EXPECT_EQ(Vec4fProperty("v4", {{1, 2, 3, -4}}).toText(),
              "v4 = vec4(1.000000,2.000000,3.000000,-4.000000);");

    AnimatedVec2fProperty anim;
    anim.name = "uv";
    anim.argument = 3;
    anim.keys = {{0.0, {{1, 2}}}, {0.5, {{3, 4}}}};
    EXPECT_EQ(anim.toText(),
              "uv = animation(3, 0.000000,vec2(1.000000,2.000000),0.500000,vec2(3.000000,4.000000));");
}

TEST(Property, FloatsEqualWithinSinglePrecisionEpsilonInclusive) {
    EXPECT_TRUE(FloatProperty("x", 0.0f).equals(FloatProperty("x", 0.00001f)));
    EXPECT_FALSE(FloatProperty("x", 0.0f).equals(FloatProperty("x", 0.0000101f)));
    EXPECT_TRUE(Vec3fProperty("x", {{1, 2, 3}}).equals(Vec3fProperty("x", {{1, 2, 3.000001f}})));
    EXPECT_FALSE(Vec3fProperty("x", {{1, 2, 3}}).equals(Vec3fProperty("x", {{1, 2, 3.001f}})));
    // Name and class must match before values are looked at.
    EXPECT_FALSE(FloatProperty("x", 1.0f).equals(FloatProperty("y", 1.0f)));
    EXPECT_FALSE(UIntProperty("x", 1).equals(FloatProperty("x", 1.0f)));
    EXPECT_FALSE(UIntProperty("x", 1).equals(UIntProperty("x", 2)));
    EXPECT_FALSE(StringProperty("x", "a").equals(StringProperty("x", "A")));
}

TEST(Property, AnimatedEqualityComparesArgumentAndEveryKey) {
    AnimatedFloatProperty a;
    a.argument = 1;
    a.keys = {{0.0, 1.0f}, {1.0, 2.0f}};
    AnimatedFloatProperty b = a;
    b.keys[1].time = 1.000009;
    EXPECT_TRUE(a.equals(b));
    b.keys[1].time = 1.0001;
    EXPECT_FALSE(a.equals(b));
    b = a;
    b.argument = 2;
    EXPECT_FALSE(a.equals(b));
    b = a;
    b.keys.pop_back();
    EXPECT_FALSE(a.equals(b));

    ArgumentProperty x, y;
    x.argument = 5;
    y.argument = 5;
    EXPECT_TRUE(x.equals(y));
    y.argument = 6;
    EXPECT_FALSE(x.equals(y));
}

TEST(Property, SaveWritesTheRecordAndLoadReadsItBack) {
    struct Case {
        Ptr<IProperty> property;
        Expect expected;
    };
    auto anim = createAnimatedProperty<AnimatedVec3fProperty>("pos", 9, {{0.25, {{1, 2, 3}}}});
    std::vector<Case> cases;
    cases.push_back(
        {createFloatProperty("f", 2.5f), Expect().text("model::Property<float>").text("f").f32(2.5f)});
    cases.push_back({createUIntProperty("u", 0x01020304),
                     Expect().text("model::Property<unsigned int>").text("u").u32(0x01020304)});
    cases.push_back({createVec2fProperty("v", {{1, -1}}),
                     Expect().text("model::Property<osg::Vec2f>").text("v").f32(1).f32(-1)});
    cases.push_back({createVec4fProperty("c", {{1, 2, 3, 4}}),
                     Expect().text("model::Property<osg::Vec4f>").text("c").f32(1).f32(2).f32(3).f32(4)});
    cases.push_back({createStringProperty("s", "abc"),
                     Expect().text("model::Property<const char*>").text("s").text("abc")});
    cases.push_back(
        {createArgumentProperty("a", 12), Expect().text("model::ArgumentProperty").text("a").u32(12)});
    cases.push_back({anim, Expect()
                               .text("model::AnimatedProperty<osg::Vec3f>")
                               .text("pos")
                               .u32(9)
                               .u32(1)
                               .f64(0.25)
                               .f32(1)
                               .f32(2)
                               .f32(3)});
    for (Case& c : cases) {
        SCOPED_TRACE(c.property->className());
        ByteSink sink;
        c.property->save(sink);
        EXPECT_EQ(sink.bytes, c.expected.body);

        Ptr<IProperty> back = createAs<IProperty>(c.property->className());
        io::MemBinaryFileR reader(sink.bytes);
        back->load(reader);
        EXPECT_TRUE(back->equals(*c.property));
        EXPECT_EQ(reader.remaining(), 0u);
    }
}

TEST(Property, LoadRefusesAnotherClassAndShortData) {
    ByteSink sink;
    FloatProperty("f", 1.0f).save(sink);
    UIntProperty u;
    io::MemBinaryFileR reader(sink.bytes);
    EXPECT_THROW(u.load(reader), nq::ExtException);

    sink.bytes.pop_back();
    FloatProperty f;
    io::MemBinaryFileR shortReader(sink.bytes);
    try {
        f.load(shortReader);
        FAIL() << "short record loaded";
    } catch (const nq::ExtException& e) {
        EXPECT_EQ(e.message(), "Unexpected end of buffer: 4 bytes needed at offset 31.");
    }
}

TEST(Property, AcceptCallsTheSlotOfItsClass) {
    struct Recorder : IPropertyVisitor {
        std::string seen;
        void visit(AnimatedVec4fProperty&) override { seen += "AV4 "; }
        void visit(AnimatedFloatProperty&) override { seen += "AF "; }
        void visit(ArgumentProperty&) override { seen += "ARG "; }
        void visit(StringProperty&) override { seen += "S "; }
        void visit(Vec2fProperty&) override { seen += "V2 "; }
        void visit(UIntProperty&) override { seen += "U "; }
        void visit(FloatProperty&) override { seen += "F "; }
    } r;
    for (std::string_view key :
         {"model::AnimatedProperty<osg::Vec4f>", "model::AnimatedProperty<float>", "model::ArgumentProperty",
          "model::Property<const char*>", "model::Property<osg::Vec2f>", "model::Property<unsigned int>",
          "model::Property<float>", "model::Property<osg::Vec3f>"}) {
        createAs<IProperty>(key)->accept(r);
    }
    EXPECT_EQ(r.seen, "AV4 AF ARG S V2 U F ");
}

}  // namespace
