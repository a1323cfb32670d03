#include <gtest/gtest.h>

#include <functional>

#include "model/PropertiesSet.h"
#include "model/PropertyCreators.h"

namespace {

using namespace model;

TEST(PropertiesSet, EveryComparedFieldMattersButCulling) {
    const std::vector<std::function<void(PropertiesSet&)>> changes = {
        [](PropertiesSet& m) { m.name = "other"; },
        [](PropertiesSet& m) { m.blending = 1; },
        [](PropertiesSet& m) { m.vertexFormat[POSITION0] = 3; },
        [](PropertiesSet& m) { m.textureChannels[12] = 0; },
        [](PropertiesSet& m) { m.materialName = "x"; },
        [](PropertiesSet& m) { m.depthBias = 1; },
        [](PropertiesSet& m) { m.shadowFlagA = 0; },
        [](PropertiesSet& m) { m.shadowFlagB = 1; },
        [](PropertiesSet& m) { m.decal = 1; },
        [](PropertiesSet& m) { m.billboard = 1; },
        [](PropertiesSet& m) { m.billboardType = 1; },
        [](PropertiesSet& m) { m.billboardMode = 0; },
        [](PropertiesSet& m) { m.textures[5].name = "a.dds"; },
        [](PropertiesSet& m) { m.uniforms.push_back(createFloatProperty("u", 1)); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        SCOPED_TRACE(i);
        PropertiesSet a, b;
        changes[i](b);
        EXPECT_FALSE(a.equals(b));
        EXPECT_FALSE(b.equals(a));
    }
    // Culling (1 unless changed) is not compared. The other defaults of a material and its textures
    // stand in the written material's exact bytes and in the golden files.
    PropertiesSet a, b;
    EXPECT_EQ(a.culling, 1);
    b.culling = 0;
    EXPECT_TRUE(a.equals(b));
}

TEST(PropertiesSet, EmptyTexturesDoNotCountAndNamedOnesCompareInFull) {
    PropertiesSet a, b;
    b.textures[3].wrapU = 0;
    b.textures[3].matrix[12] = 5;
    EXPECT_TRUE(a.equals(b));
    a.textures[3].name = b.textures[3].name = "t.dds";
    EXPECT_FALSE(a.equals(b));
    b.textures[3] = a.textures[3];
    b.textures[3].matrix[0] += 0.000005f;
    EXPECT_TRUE(a.equals(b));
    b.textures[3].matrix[0] += 0.001f;
    EXPECT_FALSE(a.equals(b));
}

TEST(PropertiesSet, UniformsCompareWithoutOrder) {
    PropertiesSet a, b;
    a.uniforms = {createFloatProperty("x", 1), createUIntProperty("y", 2)};
    b.uniforms = {createUIntProperty("y", 2), createFloatProperty("x", 1)};
    EXPECT_TRUE(a.equals(b));
}

}  // namespace
