#include <gtest/gtest.h>

#include <tuple>

#include "exporter/ErrorTexts.h"
#include "exporter/NodeSettings.h"
#include "usertext/ParamsLuaWrapper.h"

namespace {

using exporter::NodeSettings;

class NodeSettingsTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { lu::setPluginConfigDir(NQ_BINARY_DIR); }
    NodeSettings settings;
};

TEST_F(NodeSettingsTest, TypeWordsSetTheirBits) {
    EXPECT_EQ(exporter::nodeTypeFlags("renderable"), 0x1u);
    EXPECT_EQ(exporter::nodeTypeFlags("renderable|collision_shell"), 0x11u);
    EXPECT_EQ(exporter::nodeTypeFlags("bounding_box|user_box|skin_box"), 0x2240u);
    EXPECT_EQ(exporter::nodeTypeFlags("water_mask|gcollision_shell|number_root|ik_bone|lod_root"), 0x15900u);
}

TEST_F(NodeSettingsTest, UnknownTypeWordNamesTheWord) {
    EXPECT_EQ(exporter::test::failureOf([] { exporter::nodeTypeFlags("renderable|renderible"); }),
              "Unknown node type: renderible");
    EXPECT_THROW(exporter::nodeTypeFlags("renderable|"), nq::ExtException);
}

TEST_F(NodeSettingsTest, ParsesEveryKey) {
    exporter::parseNodeSettings(
        "TYPE = 'connector|bounding_box', NO_CONNECTOR = 0.6, DAMAGE_ARGUMENT = 7.9, SMOOTH_NORMALS = 1, "
        "maxFrame = 30.0",
        settings, 2);
    EXPECT_EQ(settings.flags, 0x42u);
    EXPECT_TRUE(settings.noConnector);
    EXPECT_EQ(settings.damageArgument, 7);
    EXPECT_TRUE(settings.smoothNormals);
    float maxFrame = 0;
    EXPECT_TRUE(model::getProperty(settings.properties, "maxFrame", maxFrame));
    EXPECT_FLOAT_EQ(maxFrame, 30.0f);
}

TEST_F(NodeSettingsTest, SmoothNormalsCountsOnlyUnderSettingsTwoAndThree) {
    const std::tuple<const char*, int, bool> cases[] = {{"SMOOTH_NORMALS = 1", 0, false},
                                                        {"SMOOTH_NORMALS = 0", 1, true},
                                                        {"SMOOTH_NORMALS = 0", 3, false},
                                                        {"SMOOTH_NORMALS = 0.4", 2, false}};
    for (const auto& [text, setting, smooth] : cases) {
        exporter::parseNodeSettings(text, settings, setting);
        EXPECT_EQ(settings.smoothNormals, smooth) << text << " under " << setting;
    }
}

TEST_F(NodeSettingsTest, ReservedKeysOfTheWrongKindMatchNoHandler) {
    exporter::parseNodeSettings(
        "TYPE = 3, SMOOTH_NORMALS = 'yes', NO_CONNECTOR = array(1, 2), "
        "DAMAGE_ARGUMENT = 'seven', load = 2",
        settings, 2);
    EXPECT_EQ(settings.flags, 0u);
    EXPECT_EQ(settings.damageArgument, -1);
    // None of them turns into a property or an array; the other key does.
    ASSERT_EQ(settings.properties.size(), 1u);
    EXPECT_EQ(settings.properties[0]->name, "load");
    EXPECT_TRUE(settings.arrays.empty());
    EXPECT_FALSE(exporter::isReservedNodeKey("type"));
}

TEST_F(NodeSettingsTest, FailedParseLeavesNoSettings) {
    EXPECT_THROW(exporter::parseNodeSettings("DAMAGE_ARGUMENT = 3, TYPE = 'wheel'", settings, 2),
                 nq::ExtException);
    EXPECT_EQ(settings.flags, 0u);
    EXPECT_EQ(settings.damageArgument, -1);
    EXPECT_TRUE(settings.properties.empty());
}

}  // namespace
