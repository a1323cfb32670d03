#include <gtest/gtest.h>

#include "model/PropertyCreators.h"
#include "model/PropertyList.h"

namespace {

using namespace model;

TEST(PropertyList, SetReplacesTheFirstOfTheNameInPlaceOrAppends) {
    PropertyList list;
    setProperty(list, createUIntProperty("a", 1));
    setProperty(list, createFloatProperty("b", 2));
    setProperty(list, createStringProperty("a", "now text"));
    setProperty(list, Ptr<IProperty>());
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]->className(), "model::Property<const char*>");
    EXPECT_EQ(list[1]->name, "b");
    setProperty(list, createFloatProperty("c", 3));
    EXPECT_EQ(list[2]->name, "c");
    EXPECT_EQ(findProperty(list, "c"), list[2]);
    EXPECT_FALSE(findProperty(list, "missing"));
}

TEST(PropertyList, TypedGettersFailOnAbsentNameOrWrongClass) {
    PropertyList list{createUIntProperty("n", 7), createVec2fProperty("uv", {{0.5f, 0.25f}}),
                      createStringProperty("s", "x")};
    std::uint32_t n = 99;
    EXPECT_TRUE(getProperty(list, "n", n));
    EXPECT_EQ(n, 7u);
    float f = -1;
    EXPECT_FALSE(getProperty(list, "n", f));
    EXPECT_EQ(f, -1);
    EXPECT_FALSE(getProperty(list, "nothing", n));
    osg::Vec2f uv;
    EXPECT_TRUE(getProperty(list, "uv", uv));
    EXPECT_EQ(uv, (osg::Vec2f{{0.5f, 0.25f}}));
    std::string s;
    EXPECT_TRUE(getProperty(list, "s", s));
    EXPECT_EQ(s, "x");
    EXPECT_EQ(findPropertyAs<Vec3fProperty>(list, "uv"), nullptr);
}

TEST(PropertyList, EqualityIgnoresOrderButNotSize) {
    PropertyList a{createUIntProperty("x", 1), createFloatProperty("y", 2)};
    PropertyList b{createFloatProperty("y", 2.000001f), createUIntProperty("x", 1)};
    EXPECT_TRUE(equalPropertyLists(a, b));
    b.pop_back();
    EXPECT_FALSE(equalPropertyLists(a, b));
    b.push_back(createUIntProperty("x", 2));
    EXPECT_FALSE(equalPropertyLists(a, b));
    // Each element of the first must match some element of the second; the reverse is not asked.
    PropertyList twice{createUIntProperty("x", 1), createUIntProperty("x", 1)};
    PropertyList mixed{createUIntProperty("x", 1), createUIntProperty("z", 1)};
    EXPECT_TRUE(equalPropertyLists(twice, mixed));
    EXPECT_FALSE(equalPropertyLists(mixed, twice));
}

TEST(PropertyList, ForEachArgumentSkipsStaticAndUnboundProperties) {
    PropertyList list{createAnimatedProperty<AnimatedFloatProperty>("unbound", 0xFFFFFFFF),
                      createUIntProperty("static", 4), createArgumentProperty("arg", 3),
                      createAnimatedProperty<AnimatedVec4fProperty>("color", 0)};
    std::vector<std::uint32_t> seen;
    forEachArgument(list, [&](std::uint32_t a) { seen.push_back(a); });
    EXPECT_EQ(seen, (std::vector<std::uint32_t>{3, 0}));
}

}  // namespace
