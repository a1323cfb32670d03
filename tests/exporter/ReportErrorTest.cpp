#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/Log.h"
#include "exporter/ReportError.h"

namespace {

struct LogLine {
    std::string source;
    int level;
    std::string text;
};

class ReportErrorTest : public ::testing::Test {
protected:
    void SetUp() override {
        exporter::clearErrors();
        nq::setLogSink([this](std::string_view source, int level, std::string_view text) {
            lines.push_back({std::string(source), level, std::string(text)});
        });
    }
    void TearDown() override {
        nq::setLogSink(nullptr);
        exporter::clearErrors();
    }
    std::vector<LogLine> lines;
};

TEST_F(ReportErrorTest, FormatsLogsAndCollects) {
    exporter::reportError("Node '%s' has tool long name for connector (%d vs. %d)! \tFile: %s:%d.", "n", 70,
                          64, "a.cpp", 3);
    exporter::reportError("second");
    ASSERT_EQ(exporter::errorList().size(), 2u);
    EXPECT_EQ(exporter::errorList()[0],
              "Node 'n' has tool long name for connector (70 vs. 64)! \tFile: a.cpp:3.");
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[0].source, "NQFEXP");
    EXPECT_EQ(lines[0].level, 8);
    EXPECT_EQ(lines[1].text, "second");

    const std::vector<std::string> taken = exporter::takeErrors();
    EXPECT_EQ(taken.size(), 2u);
    EXPECT_TRUE(exporter::errorList().empty());
}

TEST_F(ReportErrorTest, KeepsAtMost1024Characters) {
    const std::string longName(2000, 'x');
    exporter::reportError("Node: %s.", longName.c_str());
    ASSERT_EQ(exporter::errorList().size(), 1u);
    EXPECT_EQ(exporter::errorList()[0], "Node: " + std::string(1018, 'x'));
    exporter::reportText(longName);
    EXPECT_EQ(exporter::errorList()[1].size(), 1024u);
}

}  // namespace
