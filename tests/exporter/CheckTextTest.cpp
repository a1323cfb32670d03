#include <gtest/gtest.h>

#include "exporter/CheckText.h"
#include "exporter/ErrorTexts.h"
#include "exporter/NodeSettings.h"
#include "usertext/ParamsLuaWrapper.h"

namespace {

class CheckText : public ::testing::Test {
protected:
    static void SetUpTestSuite() { lu::setPluginConfigDir(NQ_BINARY_DIR); }
};

TEST_F(CheckText, DescribesTypeSettingsPropertiesAndArrays) {
    const std::string text = exporter::describeNodeText(
        "TYPE = \"connector|renderable\";\r\nSMOOTH_NORMALS = 1;\r\nDAMAGE_ARGUMENT = 7;\r\nload = 250.0;\r\n"
        "name = \"hook\";\r\nzeta = array(3, 1.5);\r\nalpha = array(2);\r\n",
        2);
    EXPECT_EQ(text.rfind("TYPE: 0x3 (renderable|connector)\nSMOOTH_NORMALS: on\nNO_CONNECTOR: off\n"
                         "DAMAGE_ARGUMENT: 7\nProperties (2)\n",
                         0),
              0u)
        << text;
    EXPECT_NE(text.find("Animated properties (0)\nArrays (2)\n  alpha = {2}\n  zeta = {3, 1.5}\n"),
              std::string::npos)
        << text;
    // The reserved keys never turn into properties.
    EXPECT_EQ(text.find("TYPE ="), std::string::npos) << text;
    EXPECT_EQ(text.find("DAMAGE_ARGUMENT ="), std::string::npos) << text;
}

TEST_F(CheckText, SmoothNormalsFollowsTheSetting) {
    // Under "On" the node's key is not consulted and the default holds.
    EXPECT_NE(exporter::describeNodeText("SMOOTH_NORMALS = 0", 1).find("SMOOTH_NORMALS: on\n"),
              std::string::npos);
    EXPECT_NE(exporter::describeNodeText("SMOOTH_NORMALS = 1", 0).find("SMOOTH_NORMALS: off\n"),
              std::string::npos);
    EXPECT_NE(exporter::describeNodeText("", 0).find("TYPE: 0x0\n"), std::string::npos);
}

TEST_F(CheckText, FaultsAreTheExportsOwnMessages) {
    EXPECT_EQ(exporter::test::failureOf([] { exporter::describeNodeText("TYPE = \"renderable|wheel\"", 2); }),
              "Unknown node type: wheel");
    EXPECT_THROW(exporter::describeNodeText("x = = 1", 2), nq::ExtException);
}

TEST_F(CheckText, TypeWordsFollowTheWordList) {
    EXPECT_EQ(exporter::nodeTypeWords(0), "");
    EXPECT_EQ(exporter::nodeTypeWords(exporter::kWaterMask | exporter::kRenderable | 0x80000000u),
              "renderable|water_mask");
    // Every word read back gives its bits again.
    using namespace exporter;
    const std::uint32_t all = kRenderable | kConnector | kLight | kFakeLights | kCollisionShell |
                              kCollisionLine | kBoundingBox | kLodRoot | kUserBox | kIkBone | kNumberRoot |
                              kSkinBox | kGCollisionShell | kWaterMask;
    EXPECT_EQ(nodeTypeFlags(nodeTypeWords(all)), all);
}

}  // namespace
