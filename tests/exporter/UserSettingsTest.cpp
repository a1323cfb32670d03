#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

#include "core/Utf8.h"
#include "exporter/ScratchConfigDir.h"
#include "exporter/UserSettings.h"
#include "host/HostServices.h"

namespace fs = std::filesystem;

namespace {

// The record in one line, so a comparison shows every field at once.
std::string describe(const UserSettings& s) {
    std::ostringstream out;
    out << "legacy=" << s.legacyFlag() << " smooth=" << s.smoothNormals()
        << " run=" << s.runViewerAfterExport() << " path=" << nq::wideToUtf8(s.viewerPath())
        << " args=" << nq::wideToUtf8(s.viewerArgs()) << " dir=" << nq::wideToUtf8(s.viewerWorkDir())
        << " scale=" << s.modelScale() << " hidden=" << s.exportHiddenObjects()
        << " invalid=" << s.errorOnInvalidUserDefs() << " override=" << s.overrideScale() << "/"
        << s.overrideScaleValue() << " stat=" << s.showExportStat() << " info=" << s.showNodeInfo()
        << " version=" << s.exportVersion();
    return out.str();
}

const std::string kDefaults =
    "legacy=1 smooth=2 run=0 path= args= dir= scale=5 hidden=0 invalid=0 override=0/1 stat=1 info=0 "
    "version=10";

// kDefaults with its first fields replaced by those of head.
std::string defaultsAfter(const std::string& head) {
    std::size_t at = 0;
    for (auto fields = std::count(head.begin(), head.end(), ' ') + 1; fields > 0; --fields) {
        at = kDefaults.find(' ', at + 1);
    }
    return head + kDefaults.substr(at);
}

// Each test gets its own configuration directory and records the message boxes shown.
class SettingsFile : public ::testing::Test {
protected:
    void SetUp() override {
        previous_ = host::setMessageBoxFunction([this](std::string_view title, std::string_view text) {
            messages_.push_back(std::string(title) + "|" + std::string(text));
        });
    }
    void TearDown() override { host::setMessageBoxFunction(previous_); }

    fs::path file() const { return dir_.file(); }
    void write(std::string_view content) const { dir_.write(content); }
    std::string read() const { return dir_.read(); }
    UserSettings loaded(std::string_view content) const {
        write(content);
        UserSettings settings;
        settings.load();
        return settings;
    }

    ScratchConfigDir dir_;
    host::MessageBoxFunction previous_;
    std::vector<std::string> messages_;
};

TEST(UserSettings, ModelTransformSwapsAxesAndScalesByTheTable) {
    UserSettings s;
    auto at = [&](uint32_t index) {
        s.setModelScale(index);
        return s.modelTransform().transformPoint(nq::Vec3d{{1, 2, 3}});
    };
    EXPECT_EQ(at(5), (nq::Vec3d{{1, 3, -2}}));
    EXPECT_EQ(at(6), (nq::Vec3d{{10, 30, -20}}));
    EXPECT_EQ(at(10), (nq::Vec3d{{100, 300, -200}}));
    nq::Vec3d small = at(0);
    EXPECT_DOUBLE_EQ(small[0], 0.01);
    EXPECT_DOUBLE_EQ(small[1], 0.03);
    EXPECT_DOUBLE_EQ(small[2], -0.02);
    // An index beyond the table, set through the accessor, counts as "1:1".
    EXPECT_EQ(at(11), (nq::Vec3d{{1, 3, -2}}));
}

TEST_F(SettingsFile, MissingUnreadableOrGarbledFilesLeaveTheDefaultsSilently) {
    UserSettings missing;
    missing.load();
    EXPECT_EQ(describe(missing), kDefaults);

    fs::create_directory(file());  // a directory where the file should be: opens, but cannot be read
    UserSettings unreadable;
    unreadable.load();
    EXPECT_EQ(describe(unreadable), kDefaults);
    fs::remove(file());

    EXPECT_EQ(describe(loaded("")), kDefaults);
    EXPECT_EQ(describe(loaded("garbage\n0\n0\n")), kDefaults);
    // A failed read keeps that value and everything after it at the defaults.
    EXPECT_EQ(describe(loaded("11\n0\nx\n1\n/p\n")), defaultsAfter("legacy=0"));
    EXPECT_EQ(describe(loaded("11\n0\n1\n2\n/p\n")), defaultsAfter("legacy=0 smooth=1"));
    EXPECT_EQ(describe(loaded("11\n1\n0\n1\n/bin/v")), defaultsAfter("legacy=1 smooth=0 run=1 path=/bin/v"));
    EXPECT_TRUE(messages_.empty());
}

TEST_F(SettingsFile, EachLayoutVersionReadsOnlyItsOwnLines) {
    // Every file carries trailing lines that its version does not have; they must stay unread.
    const std::string extra = "1:50\n1\n1\n1\n0\n1\n0\n11\n";
    struct Case {
        std::string content;
        std::string expected;
    };
    const Case cases[] = {
        {"2\n0\n3\n1\n/v\n-a\n/w\n1\n1\n0.5\n-7\n" + extra,
         defaultsAfter("legacy=0 smooth=3 run=1 path=/v args=-a dir=/w")},
        {"5\n1\n0\n0\n\n\n\n1\n1\n2.5\n42\n1:10\n1\n1\n" + extra,
         defaultsAfter("legacy=1 smooth=0 run=0 path= args= dir= scale=6 hidden=1 invalid=1")},
        {"6\n1\n2\n0\np\n\nd\n1\n1\n-3\n1:50\n0\n1\n1\n" + extra,
         defaultsAfter("legacy=1 smooth=2 run=0 path=p args= dir=d scale=9 hidden=0 invalid=1")},
        {"9\n1\n2\n0\n\n\n\n1\n1\n-3\n1:100\n0\n0\n1\n0\n1\n0\n" + extra,
         defaultsAfter("legacy=1 smooth=2 run=0 path= args= dir= scale=10 hidden=0 invalid=0 override=0/1 "
                       "stat=0 info=1")},
        {"10\n1\n2\n0\n\n\n\n1\n1\n1:25\n0\n0\n1\n0\n1\n0\n11\n",
         defaultsAfter("legacy=1 smooth=2 run=0 path= args= dir= scale=8 hidden=0 invalid=0 override=0/1 "
                       "stat=0 info=1")},
        {"11\n0\n1\n1\n/opt/v\n-open $FILE$\n/tmp/w\n1\n1\n1:20\n1\n1\n1\n0\n1\n0\n11\n",
         "legacy=0 smooth=1 run=1 path=/opt/v args=-open $FILE$ dir=/tmp/w scale=7 hidden=1 invalid=1 "
         "override=0/1 stat=0 info=1 version=11"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(describe(loaded(c.content)), c.expected) << c.content;
    }
}

TEST_F(SettingsFile, ValuesAreBroughtIntoRangeOrLeftAtTheirDefault) {
    auto file = [](std::string smooth, std::string scale, std::string version) {
        return "11\n1\n" + smooth + "\n0\n\n\n\n1\n1\n" + scale + "\n0\n0\n1\n1\n0\n0\n" + version + "\n";
    };
    // smoothNormals above 3 is clamped; the rest of the file still loads.
    UserSettings clamped = loaded(file("7", "1:10", "11"));
    EXPECT_EQ(clamped.smoothNormals(), 3u);
    EXPECT_EQ(clamped.modelScale(), 6u);
    EXPECT_EQ(clamped.exportVersion(), 11);
    // A label outside the table, or one that differs only in spacing, gives "1:1", index 5.
    EXPECT_EQ(loaded(file("0", "1:3", "11")).modelScale(), 5u);
    EXPECT_EQ(loaded(file("0", "1:10 ", "11")).modelScale(), 5u);
    // The version is taken as it stands (the dialog copes with unknown versions), but a number
    // that does not fit in 16 bits fails and keeps 10.
    EXPECT_EQ(loaded(file("0", "1:1", "12")).exportVersion(), 12);
    EXPECT_EQ(loaded(file("0", "1:1", "70000")).exportVersion(), 10);
}

TEST_F(SettingsFile, LongTextLinesAreCutAt255BytesWithoutSplittingACharacter) {
    std::string longAscii(300, 'a');
    std::string longWide;
    for (int i = 0; i < 200; ++i) {
        longWide += "\xC3\xA9";  // U+00E9, two bytes
    }
    // The last lines end in CR LF, as from an editor on another system.
    UserSettings s = loaded("11\n1\n2\n1\n" + longAscii + "\n" + longWide + "\nnext\r\n1\n1\n1:20\r\n");
    EXPECT_EQ(s.viewerPath(), std::wstring(255, L'a'));
    EXPECT_EQ(s.viewerArgs(), std::wstring(127, L'\u00E9'));
    EXPECT_EQ(s.viewerWorkDir(), L"next");
    EXPECT_EQ(s.modelScale(), 7u);
}

TEST_F(SettingsFile, SaveWritesTheCurrentLayoutAndLoadsBack) {
    UserSettings s;
    s.setLegacyFlag(false);
    s.setSmoothNormals(3);
    s.setRunViewerAfterExport(true);
    s.setViewerPath(L"/opt/Vi\u00EBwer/bin");
    s.setViewerArgs(L"-f $FILE$ \u65E5\u672C");
    s.setViewerWorkDir(L"");
    s.setModelScale(0);
    s.setExportHiddenObjects(true);
    s.setErrorOnInvalidUserDefs(true);
    s.setOverrideScale(true);
    s.setOverrideScaleValue(2.5);
    s.setShowExportStat(false);
    s.setShowNodeInfo(true);
    s.setExportVersion(11);
    ASSERT_TRUE(s.save());
    EXPECT_EQ(read(),
              "11\n0\n3\n1\n/opt/Vi\xC3\xABwer/bin\n-f $FILE$ "
              "\xE6\x97\xA5\xE6\x9C\xAC\n\n1\n1\n100:1\n1\n1\n1\n0\n1\n"
              "0\n11\n");

    UserSettings back;
    back.load();
    s.setOverrideScale(false);  // not kept in the file
    s.setOverrideScaleValue(1.0);
    EXPECT_EQ(describe(back), describe(s));

    // Every model scale goes out as its label and comes back as its index.
    for (uint32_t index = 0; index <= 10; ++index) {
        s.setModelScale(index);
        ASSERT_TRUE(s.save());
        back.load();
        EXPECT_EQ(back.modelScale(), index);
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(dir_.path()), {}), 1);  // no temporary file left
    EXPECT_TRUE(messages_.empty());
}

TEST_F(SettingsFile, SaveMakesAMissingDirectoryOrWarnsWithThePath) {
    host::setPluginConfigDir((dir_.path() / "new" / "dir").string());
    EXPECT_TRUE(UserSettings().save());
    EXPECT_TRUE(fs::is_regular_file(dir_.path() / "new" / "dir" / "nqfexp.cfg"));

    write("not a directory");
    std::string blocked = (file() / "sub").string();  // a directory below a plain file cannot be made
    host::setPluginConfigDir(blocked);
    UserSettings s;
    s.setShowNodeInfo(true);
    EXPECT_FALSE(s.save());
    ASSERT_EQ(messages_.size(), 1u);
    EXPECT_EQ(
        messages_[0],
        "NQF Plugin Warning|NQF Warning: User settings file was not saved.\nThe configuration directory "
        "could not be created or accessed.\n" +
            blocked + "/nqfexp.cfg");
    EXPECT_TRUE(s.showNodeInfo());
    EXPECT_EQ(read(), "not a directory");
}

TEST_F(SettingsFile, FirstUseLoadsOnceAndEveryThreadGetsTheSameRecord) {
    write("11\n1\n1\n0\n\n\n\n1\n1\n1:1\n0\n0\n1\n1\n1\n0\n11\n");
    std::vector<UserSettings*> seen(8);
    std::vector<std::thread> threads;
    for (auto& slot : seen) {
        threads.emplace_back([&slot] { slot = &userSettings(); });
    }
    for (auto& t : threads) {
        t.join();
    }
    for (UserSettings* s : seen) {
        EXPECT_EQ(s, seen[0]);
    }
    EXPECT_EQ(seen[0]->exportVersion(), 11);
    EXPECT_TRUE(seen[0]->showNodeInfo());
    write("");  // a later call does not load again
    EXPECT_EQ(userSettings().exportVersion(), 11);
}

}  // namespace
