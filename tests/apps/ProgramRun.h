#pragma once

// Running the built programs as a user does: in a scratch directory of their own, with standard
// output and standard error caught in files and the exit status decoded.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace apptest {

namespace fs = std::filesystem;

struct Outcome {
    int status = -1;
    std::string out, err;
};

inline std::string slurp(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

// Whether text holds part; a failure shows both.
inline ::testing::AssertionResult holds(const std::string& text, const std::string& part) {
    if (text.find(part) != std::string::npos) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << "\"" << part << "\" is not in:\n" << text;
}

// The path of a document in tests/scenes.
inline std::string scenePath(const std::string& name) {
    return std::string(NQ_SOURCE_DIR) + "/tests/scenes/" + name;
}

// A test with a fresh scratch directory (and an empty plug-in configuration directory "cfg" in
// it), removed afterwards.
class ProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "nq-program-test-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        dir = pattern;
        fs::create_directories(dir / "cfg");
    }
    void TearDown() override { fs::remove_all(dir); }

    // Runs a program of apps/ with the arguments (a shell command line tail).
    Outcome runProgram(const std::string& program, const std::string& args) {
        const std::string command = std::string(NQ_BINARY_DIR) + "/apps/" + program + " " + args + " >" +
                                    (dir / "out").string() + " 2>" + (dir / "err").string();
        Outcome r;
        const int raw = std::system(command.c_str());
        r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        r.out = slurp(dir / "out");
        r.err = slurp(dir / "err");
        return r;
    }
    // nqfexport with the scratch configuration directory, so no user's settings take part.
    Outcome runExport(const std::string& args) {
        return runProgram("nqfexport", "--plugcfg " + (dir / "cfg").string() + " " + args);
    }

    fs::path dir;
};

}  // namespace apptest
