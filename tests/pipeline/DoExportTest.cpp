// DoExport in process over a headless scene: re-entry, the viewer start, the exits and the target.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "core/Vfs.h"
#include "exporter/NQModelExporter.h"
#include "exporter/ReportError.h"
#include "exporter/ScriptPrimitives.h"
#include "exporter/UserSettings.h"
#include "scene/HeadlessInterface.h"
#include "scene/SceneLoader.h"
#include "usertext/ParamsLuaWrapper.h"

namespace fs = std::filesystem;

namespace {

// A headless host that records what the exporter shows and starts.
class RecordingHost : public scene::HeadlessInterface {
public:
    RecordingHost(scene::Scene& scene, std::ostream& err) : HeadlessInterface(scene, options(err)) {}
    static Options options(std::ostream& err) {
        Options o;
        o.err = &err;
        o.terminal = false;
        o.plugCfgDir = NQ_BINARY_DIR;
        return o;
    }
    void ProgressStart(const std::string& title, bool showBar, host::ProgressCallback callback,
                       void* argument) override {
        titles.push_back(title);
        if (onProgressStart) {
            onProgressStart();
        }
        HeadlessInterface::ProgressStart(title, showBar, callback, argument);
    }
    int MessageBox(host::HWND, const std::string& text, const std::string& caption, unsigned type) override {
        if (caption == "Export statistics") {
            statistics.push_back(text);
            return 1;
        }
        boxes.push_back(caption + ": " + text);
        lastType = type;
        return 1;
    }
    int ShellExecute(host::HWND, const char*, const std::string& file, const std::string& parameters,
                     const std::string& directory, int) override {
        started.push_back(file + "|" + parameters + "|" + directory);
        return shellResult;
    }

    std::function<void()> onProgressStart;
    std::vector<std::string> titles;
    std::vector<std::string> boxes;
    std::vector<std::string> statistics;
    std::vector<std::string> started;
    unsigned lastType = 0;
    int shellResult = 42;
};

class DoExportTest : public ::testing::Test {
protected:
    void SetUp() override {
        nqvfs::mountNative("/");
        lu::setPluginConfigDir(NQ_BINARY_DIR);
        exporter::clearErrors();
        userSettings() = UserSettings();
        std::string pattern = (fs::temp_directory_path() / "doexport-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        dir = pattern;
        target = (dir / "Out.nqf").string();
    }
    void TearDown() override {
        fs::remove_all(dir);
        userSettings() = UserSettings();
    }
    // A recording host over the document json.
    RecordingHost& hostFor(const std::string& json) {
        scene = scene::parseScene(json);
        recorder = std::make_unique<RecordingHost>(*scene, err);
        return *recorder;
    }
    // One export to the target through a fresh exporter, as the host's menu starts it.
    int exportOnce() { return exporter::NQModelExporter().DoExport(target.c_str(), nullptr, recorder.get()); }

    fs::path dir;
    std::string target;
    std::ostringstream err;
    std::unique_ptr<scene::Scene> scene;
    std::unique_ptr<RecordingHost> recorder;
};

constexpr const char* kTwoHelpers = R"({"filePath": "/scenes/Two.max", "nodes": [
    {"name": "a", "object": {}}, {"name": "b", "object": {}}]})";
constexpr const char* kUnknownType =
    R"({"nodes": [{"name": "x", "userProps": "TYPE = 'wheel'", "object": {}}]})";

TEST_F(DoExportTest, ASecondExportWhileOneRunsIsRefused) {
    RecordingHost& host = hostFor(kTwoHelpers);
    int inner = -1;
    host.onProgressStart = [&] {
        if (inner == -1) {
            inner = exportOnce();
        }
    };
    EXPECT_EQ(exportOnce(), 1);
    EXPECT_EQ(inner, 0);
    EXPECT_EQ(exporter::exportInProgress, 0);
    EXPECT_TRUE(fs::exists(target));
    // The refused call touched nothing: the file of the first export is whole.
    EXPECT_TRUE(host.boxes.empty());
}

TEST_F(DoExportTest, ViewerGetsTheTargetInPlaceOfTheFirstFileMarkOnly) {
    RecordingHost& host = hostFor(kTwoHelpers);
    userSettings().setRunViewerAfterExport(true);
    userSettings().setViewerPath(L"/opt/viewer");
    userSettings().setViewerArgs(L"-open $FILE$ -log $FILE$");
    userSettings().setViewerWorkDir(L"/tmp");
    exportOnce();
    ASSERT_EQ(host.started.size(), 1u);
    EXPECT_EQ(host.started[0], "/opt/viewer|-open \"" + target + "\" -log $FILE$|/tmp");
    EXPECT_TRUE(host.boxes.empty());
    // A good export ends with the statistics of the tree it wrote, one entry per line.
    ASSERT_EQ(host.statistics.size(), 1u);
    EXPECT_EQ(host.statistics[0].rfind("nTransformNodes: ", 0), 0u) << host.statistics[0];
    EXPECT_NE(host.statistics[0].find("\nnArguments: 0\n"), std::string::npos) << host.statistics[0];
    userSettings().setShowExportStat(false);
    exportOnce();
    EXPECT_EQ(host.statistics.size(), 1u);
}

TEST_F(DoExportTest, AViewerThatDoesNotStartIsReportedAndTheFileStands) {
    RecordingHost& host = hostFor(kTwoHelpers);
    host.shellResult = 2;
    userSettings().setRunViewerAfterExport(true);
    userSettings().setViewerArgs(L"plain args");
    EXPECT_EQ(exportOnce(), 1);
    ASSERT_EQ(host.started.size(), 1u);
    EXPECT_EQ(host.started[0], "|plain args|");
    ASSERT_EQ(host.boxes.size(), 1u);
    EXPECT_EQ(host.boxes[0], "Error: Can't execute viewer.");
    EXPECT_EQ(host.lastType, 0x10u);
    EXPECT_TRUE(fs::exists(target));
}

TEST_F(DoExportTest, CollectedErrorsKeepTheFileAndTheViewerAway) {
    RecordingHost& host = hostFor(kUnknownType);
    userSettings().setErrorOnInvalidUserDefs(true);
    userSettings().setRunViewerAfterExport(true);
    EXPECT_EQ(exportOnce(), 1);
    EXPECT_FALSE(fs::exists(target));
    EXPECT_TRUE(host.started.empty());
    ASSERT_EQ(host.boxes.size(), 1u);
    EXPECT_EQ(
        host.boxes[0].rfind(
            "Export errors: Unknown node type: wheel. Node: x.\tFile: Exporter\\src\\NQModelExporter:", 0),
        0u)
        << host.boxes[0];
    EXPECT_TRUE(host.statistics.empty());
    EXPECT_EQ(exporter::exportInProgress, 0);
}

TEST_F(DoExportTest, CancelStopsWithoutAFileOrAMessage) {
    RecordingHost& host = hostFor(kTwoHelpers);
    host.SetCancel(true);
    EXPECT_EQ(exportOnce(), 1);
    EXPECT_FALSE(fs::exists(target));
    EXPECT_TRUE(host.boxes.empty());
    EXPECT_EQ(host.titles, std::vector<std::string>{"Exporting scene..."});
    EXPECT_EQ(exporter::exportInProgress, 0);
}

TEST_F(DoExportTest, ScriptExportTakesExactlyOneArgumentAndAlwaysGivesOne) {
    host::SetCOREInterface(&hostFor(kUnknownType));
    userSettings().setErrorOnInvalidUserDefs(true);
    const host::ScriptValue path = target;
    EXPECT_EQ(exporter::ExportToNQF(std::span(&path, 1)), host::ScriptValue(1));
    EXPECT_FALSE(fs::exists(target));
    const std::vector<host::ScriptValue> two{target, target};
    try {
        exporter::ExportToNQF(two);
        FAIL() << "no exception";
    } catch (const host::ArgCountError& e) {
        EXPECT_EQ(e.function(), "ExportToNQF");
        EXPECT_EQ(e.expected(), 1);
        EXPECT_EQ(e.given(), 2);
    }
    host::SetCOREInterface(nullptr);
}

TEST_F(DoExportTest, SetNodeTypeRewritesTypeAndKeepsTheRest) {
    hostFor(R"({"nodes": [{"name": "x", "userProps": "TYPE = 'renderable', load = 2.5", "object": {}},
                         {"name": "y", "object": {}}]})");
    host::INode* x = scene->root.GetChildNode(0);
    host::INode* y = scene->root.GetChildNode(1);
    const std::vector<host::ScriptValue> args{x, std::string("connector|user_box")};
    EXPECT_EQ(exporter::SetNodeType(args), host::ScriptValue(1));
    const std::string text = x->GetUserPropBuffer();
    EXPECT_NE(text.find("connector|user_box"), std::string::npos) << text;
    EXPECT_NE(text.find("load"), std::string::npos) << text;
    EXPECT_EQ(text.find("renderable"), std::string::npos) << text;
    const std::vector<host::ScriptValue> empty{y, std::string("connector")};
    EXPECT_EQ(exporter::SetNodeType(empty), host::ScriptValue(0));
    EXPECT_TRUE(y->GetUserPropBuffer().empty());
    const std::vector<host::ScriptValue> one{x};
    EXPECT_THROW(exporter::SetNodeType(one), host::ArgCountError);
}

}  // namespace
