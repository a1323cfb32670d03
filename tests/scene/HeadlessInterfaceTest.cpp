// The headless host's operations that talk to the user or the system: progress, message boxes,
// directories, the viewer start, and the registry of the running host.

#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>
#include <tuple>

#include "host/Constants.h"
#include "host/HostServices.h"
#include "scene/HeadlessInterface.h"
#include "scene/StartProgram.h"

namespace {

using scene::HeadlessInterface;

unsigned long noProgressCallback(void*) {
    return 0;
}

struct Host {
    explicit Host(bool terminal, bool verbose = false)
        : ip(scene, {&err, terminal, verbose, "/tmp/plugcfg"}) {}
    scene::Scene scene;
    std::ostringstream err;
    HeadlessInterface ip;
};

TEST(HeadlessProgress, ShownAsTheTerminalAllows) {
    const std::string dots(30, '.');
    const std::string half = std::string(15, '#') + std::string(15, '.');
    const std::string full(30, '#');
    const std::tuple<bool, bool, std::string> cases[] = {
        {false, false, ""},                                                         // not a terminal: nothing
        {true, true, "Exporting scene...\nExporting scene... 50%\nAlmost 100%\n"},  // verbose: plain lines
        // A terminal: the bar redrawn in place, only on the first of two equal updates, padded over
        // a longer line, and cleared at the end.
        {true, false,
         "\rExporting scene... [" + dots + "]" + "\rExporting scene... [" + half + "]  50%" + "\rAlmost [" +
             full + "] 100%" + std::string(12, ' ') + "\r" + std::string(44, ' ') + "\r"},
    };
    for (const auto& [terminal, verbose, expected] : cases) {
        Host h(terminal, verbose);
        h.ip.ProgressStart("Exporting scene...", true, noProgressCallback, nullptr);
        h.ip.ProgressUpdate(50);
        h.ip.ProgressUpdate(50);
        h.ip.ProgressUpdate(100, true, "Almost");
        h.ip.ProgressEnd();
        h.ip.ProgressEnd();       // a surplus end does nothing
        h.ip.ProgressUpdate(10);  // nothing open: ignored
        EXPECT_EQ(h.err.str(), expected) << terminal << verbose;
    }
}

TEST(HeadlessProgress, StartingAgainReplacesTheDisplay) {
    Host h(true, true);
    h.ip.ProgressStart("Optimizations...", false, noProgressCallback, nullptr);
    h.ip.ProgressStart("Smoothing normals...", false, noProgressCallback, nullptr);
    h.ip.ProgressEnd();
    h.ip.ProgressUpdate(1, true, nullptr);
    EXPECT_EQ(h.err.str(), "Optimizations...\nSmoothing normals...\n");
}

TEST(HeadlessMessageBox, PrintsCaptionAndTextAndTakesTheFirstButton) {
    Host h(false);
    EXPECT_EQ(
        h.ip.MessageBox(h.ip.GetActiveWindow(), "Can't find some bones!", "Error", host::MB_ICONWARNING),
        host::IDOK);
    EXPECT_EQ(h.ip.MessageBox(nullptr, "Replace?", "Question", host::MB_YESNO | host::MB_ICONQUESTION),
              host::IDYES);
    EXPECT_EQ(h.ip.MessageBox(nullptr, "Again?", "Disk", host::MB_RETRYCANCEL), host::IDRETRY);
    EXPECT_EQ(h.err.str(), "Error: Can't find some bones!\nQuestion: Replace?\nDisk: Again?\n");
}

TEST(HeadlessMessageBox, ClearsTheBarAndDrawsItAgain) {
    Host h(true);
    h.ip.ProgressStart("Work", false, noProgressCallback, nullptr);
    h.ip.MessageBox(nullptr, "Can't execute viewer.", "Error", host::MB_ICONERROR);
    EXPECT_EQ(h.err.str(), "\rWork\r    \rError: Can't execute viewer.\n\rWork");
}

TEST(HeadlessInterface, SceneValuesAndDirectories) {
    Host h(false);
    h.scene.filePath = "/scenes/a.max";
    h.scene.time = 960;
    h.scene.ticksPerFrame = 80;
    EXPECT_EQ(h.ip.GetCurFilePath(), "/scenes/a.max");
    EXPECT_EQ(h.ip.GetTime(), 960);
    EXPECT_EQ(h.ip.GetRootNode(), &h.scene.root);
    EXPECT_EQ(h.ip.GetDir(host::APP_PLUGCFG_DIR), "/tmp/plugcfg");
    EXPECT_EQ(h.ip.GetDir(3), "");
    EXPECT_EQ(h.ip.GetMAXHWnd(), nullptr);
    EXPECT_FALSE(h.ip.GetCancel());
    h.ip.SetCancel(true);
    EXPECT_TRUE(h.ip.GetCancel());

    EXPECT_EQ(host::GetCOREInterface(), nullptr);
    EXPECT_EQ(host::GetTicksPerFrame(), 160);
    host::SetCOREInterface(&h.ip);
    EXPECT_EQ(host::GetCOREInterface(), &h.ip);
    EXPECT_EQ(host::GetTicksPerFrame(), 80);
    host::SetCOREInterface(nullptr);
}

TEST(HeadlessInterface, DefaultConfigurationDirectoryIsPerUser) {
    scene::Scene scene;
    std::ostringstream err;
    HeadlessInterface ip(scene, {&err, false, false, ""});
    EXPECT_EQ(ip.GetDir(host::APP_PLUGCFG_DIR), host::defaultPluginConfigDir());
    EXPECT_NE(host::defaultPluginConfigDir(), "");
}

// The short ways to the host reach the registered Interface unless a test installed its own.
TEST(HeadlessInterface, HostServicesReachTheRunningHost) {
    Host h(false);
    host::SetCOREInterface(&h.ip);
    EXPECT_EQ(host::pluginConfigDir(), "/tmp/plugcfg");
    host::messageBox("NQF Plugin Warning", "not saved");
    EXPECT_EQ(h.err.str(), "NQF Plugin Warning: not saved\n");

    host::setPluginConfigDir("/elsewhere");
    EXPECT_EQ(host::pluginConfigDir(), "/elsewhere");
    host::setPluginConfigDir("");
    EXPECT_EQ(host::pluginConfigDir(), "/tmp/plugcfg");
    host::SetCOREInterface(nullptr);
    EXPECT_EQ(host::pluginConfigDir(), host::defaultPluginConfigDir());
}

TEST(StartProgram, CommandLineWordsFollowTheHostRules) {
    using Words = std::vector<std::string>;
    EXPECT_EQ(scene::splitCommandLine("  -a  b\t\"c d\" "), (Words{"-a", "b", "c d"}));
    EXPECT_EQ(scene::splitCommandLine("--file \"/out/my model.nqf\" -x"),
              (Words{"--file", "/out/my model.nqf", "-x"}));
    EXPECT_EQ(scene::splitCommandLine("a\"b c\"d \"\""), (Words{"ab cd", ""}));
    EXPECT_EQ(scene::splitCommandLine(R"(a\\b \\\"q \\"r s")"), (Words{R"(a\\b)", R"(\"q)", R"(\r s)"}));
    EXPECT_EQ(scene::splitCommandLine(""), Words{});
}

TEST(StartProgram, RunsTheProgramInItsDirectory) {
    std::filesystem::path dir =
        std::filesystem::temp_directory_path() / ("nq_viewer_" + std::to_string(getpid()));
    std::filesystem::create_directories(dir);
    Host h(false);
    int result = h.ip.ShellExecute(nullptr, nullptr, "sh", "-c \"echo started > out.txt\"", dir.string(),
                                   host::SW_SHOWNORMAL);
    EXPECT_GT(result, 32);
    // The program runs on its own; wait for its file.
    std::filesystem::path out = dir / "out.txt";
    for (int i = 0; i < 500 && !(std::filesystem::exists(out) && std::filesystem::file_size(out) > 0); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    std::ifstream in(out);
    std::string text;
    std::getline(in, text);
    EXPECT_EQ(text, "started");
    std::filesystem::remove_all(dir);
}

TEST(StartProgram, FailuresAreResultsOf32OrBelow) {
    Host h(false);
    EXPECT_EQ(h.ip.ShellExecute(nullptr, nullptr, "/no/such/viewer", "", "", 1), host::SE_ERR_FNF);
    EXPECT_EQ(h.ip.ShellExecute(nullptr, nullptr, "nq-no-such-viewer", "\"$FILE$\"", "", 1),
              host::SE_ERR_FNF);
    EXPECT_EQ(h.ip.ShellExecute(nullptr, nullptr, "", "", "", 1), host::SE_ERR_FNF);
    EXPECT_EQ(h.ip.ShellExecute(nullptr, nullptr, "sh", "-c true", "/no/such/dir", 1), host::SE_ERR_PNF);
    EXPECT_EQ(h.ip.ShellExecute(nullptr, "print", "sh", "", "", 1), host::SE_ERR_NOASSOC);
    EXPECT_EQ(h.ip.ShellExecute(nullptr, nullptr, NQ_SOURCE_DIR "/README.md", "", "", 1),
              host::SE_ERR_ACCESSDENIED);
}

}  // namespace
