#include <gtest/gtest.h>

#include "model/PropertyCreators.h"

namespace {

using namespace model;

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
}

}  // namespace
