#include <gtest/gtest.h>

#include "exporter/SettingText.h"
#include "exporter/UserSettings.h"

namespace {

TEST(SettingText, EachKindOfSettingTakesItsForms) {
    UserSettings s;
    EXPECT_EQ(applySettingText(s, "exportHiddenObjects=yes"), std::nullopt);
    EXPECT_TRUE(s.exportHiddenObjects());
    EXPECT_EQ(applySettingText(s, "exportHiddenObjects=0"), std::nullopt);
    EXPECT_FALSE(s.exportHiddenObjects());
    // A list takes a label or the number it stands for.
    EXPECT_EQ(applySettingText(s, "modelScale=1:10"), std::nullopt);
    EXPECT_EQ(s.modelScale(), 6u);
    EXPECT_EQ(applySettingText(s, "modelScale=0"), std::nullopt);
    EXPECT_EQ(s.modelScale(), 0u);
    EXPECT_EQ(applySettingText(s, "exportVersion=11"), std::nullopt);
    EXPECT_EQ(s.exportVersion(), 11u);
    EXPECT_EQ(applySettingText(s, "overrideScaleValue=2.5"), std::nullopt);
    EXPECT_EQ(s.overrideScaleValue(), 2.5);
    // Text keeps everything after the first '=', including further ones and blanks.
    EXPECT_EQ(applySettingText(s, "viewerArgs=-open $FILE$ -x=1"), std::nullopt);
    EXPECT_EQ(s.viewerArgs(), L"-open $FILE$ -x=1");
    EXPECT_EQ(applySettingText(s, "viewerPath=/opt/v\xC3\xA9w"), std::nullopt);
    EXPECT_EQ(s.viewerPath(), L"/opt/v\u00E9w");
}

TEST(SettingText, FaultsNameTheSettingAndLeaveTheRecordAlone) {
    UserSettings s;
    const UserSettings before = s;
    EXPECT_EQ(applySettingText(s, "exportHiddenObjects"), "expected NAME=VALUE, got \"exportHiddenObjects\"");
    EXPECT_EQ(applySettingText(s, "exportHiddenObjects=maybe"),
              "exportHiddenObjects takes 0 or 1 (or true/false, on/off, yes/no), not \"maybe\"");
    EXPECT_EQ(applySettingText(s, "exportVersion=12"),
              "exportVersion takes one of \"10 (recomended)\" (10), \"11 (devs only)\" (11), not \"12\"");
    EXPECT_NE(applySettingText(s, "modelScale=-1"), std::nullopt);
    EXPECT_NE(applySettingText(s, "modelScale=4294967302"), std::nullopt);
    EXPECT_NE(applySettingText(s, "modelScale=11"), std::nullopt);
    EXPECT_EQ(applySettingText(s, "overrideScaleValue=1.5x"),
              "overrideScaleValue takes a number, not \"1.5x\"");
    EXPECT_EQ(applySettingText(s, "overrideScaleValue=inf"),
              "overrideScaleValue takes a number, not \"inf\"");
    EXPECT_EQ(applySettingText(s, "viewerPath=\xC3"), "viewerPath takes UTF-8 text");
    const std::optional<std::string> unknown = applySettingText(s, "noSuchThing=1");
    ASSERT_TRUE(unknown);
    EXPECT_EQ(
        unknown->rfind("unknown setting \"noSuchThing\"; the settings are legacyFlag, smoothNormals, ", 0),
        0u)
        << *unknown;
    EXPECT_EQ(s.exportHiddenObjects(), before.exportHiddenObjects());
    EXPECT_EQ(s.exportVersion(), before.exportVersion());
    EXPECT_EQ(s.modelScale(), before.modelScale());
    EXPECT_EQ(s.overrideScaleValue(), before.overrideScaleValue());
    EXPECT_EQ(s.viewerPath(), before.viewerPath());
}

}  // namespace
