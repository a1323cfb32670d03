// nqfinfo as users run it: exit status, the summary, the JSON dump, the fault line.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <simdjson.h>

#include "ProgramRun.h"
#include "io/NqfSample.h"
#include "model/io/NqfReader.h"

namespace fs = std::filesystem;

namespace {

using apptest::Outcome;

class Nqfinfo : public apptest::ProgramTest {
protected:
    std::string write(const std::string& name, const std::vector<std::uint8_t>& bytes) {
        const fs::path p = dir / name;
        std::ofstream(p, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return p.string();
    }
    Outcome run(const std::string& args) { return runProgram("nqfinfo", args); }
};

TEST_F(Nqfinfo, SummaryOfAValidFile) {
    const std::string file = write("sample.nqf", nqftest::sampleFile().file());
    const Outcome r = run(file);
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_TRUE(apptest::holds(r.out,
                               "Tree (12 nodes)\n  model::Node \"root\"\n    model::TransformNode \"t\"\n"
                               "      model::Bone \"bone\"\n"));
    EXPECT_TRUE(apptest::holds(r.out, "  CONNECTORS (1 node)\n    model::Connector \"hook\", on \"t\"\n"));
    EXPECT_TRUE(
        apptest::holds(r.out,
                       "model::RenderNode \"two\", material 1 \"sign\", on \"t\", \"bone\", 300 vertices, "
                       "3 indices\n"));
    EXPECT_TRUE(
        apptest::holds(r.out,
                       "  [0] \"body\", material \"default\", 2 textures, 2 uniforms, 2 animated uniforms\n"
                       "    slot 0: \"diffuse.dds\"\n    slot 13: \"damage.dds\"\n"));
    EXPECT_TRUE(apptest::holds(
        r.out,
        "Counts: 29 nodes (12 tree, 17 list), 2 materials, 318 vertices, 22 indices, 71 strings, "
        "8 handles\n"));
}

TEST_F(Nqfinfo, JsonDumpIsWellFormedAndExact) {
    const std::string file = write("sample.nqf", nqftest::sampleFile().file());
    const Outcome r = run("--json " + file);
    ASSERT_EQ(r.status, 0) << r.err;
    simdjson::dom::parser parser;
    simdjson::dom::element doc;
    ASSERT_EQ(parser.parse(r.out).get(doc), simdjson::SUCCESS) << r.out.substr(0, 400);
    EXPECT_EQ(doc["tree"].get_array().size(), 12u);
    EXPECT_EQ(doc["tree"].at(0)["parent"].is_null(), true);
    EXPECT_EQ(std::string_view(doc["tree"].at(6)["class"]), "model::ArgPositionNode");
    EXPECT_EQ(int64_t(doc["tree"].at(9)["scale"].at(0)["secondKeys"].at(1).at(1).at(2)), 2);
    EXPECT_EQ(double(doc["root"]["materials"].at(0)["uniforms"].at(0)["value"]), 0.75);
    // The float maximum, written in its shortest form, reads back as the same float.
    EXPECT_EQ(static_cast<float>(double(doc["root"]["lightBox"]["min"].at(0))), 3.4028234663852886e38f);
    const auto lights = doc["groups"].at(3)["nodes"].at(8);
    EXPECT_EQ(std::string_view(lights["class"]), "model::AnimatedFakeOmniLightsNode");
    EXPECT_EQ(lights["animationData"].get_array().size(), 128u);
    EXPECT_EQ(uint64_t(doc["groups"].at(3)["nodes"].at(1)["renderOption"]), 7u);
}

TEST_F(Nqfinfo, FaultIsOneLineAndExitOne) {
    std::vector<std::uint8_t> bytes = nqftest::sampleFile().file();
    bytes.resize(bytes.size() - 3);
    const std::string file = write("cut.nqf", bytes);
    std::string expected;
    try {
        model::io::readNqf(bytes);
    } catch (const model::io::ReadError& e) {
        expected = file + ": " + e.what() + "\n";
    }
    ASSERT_NE(expected, "");
    const Outcome r = run(file);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, expected);
    EXPECT_EQ(r.out, "");

    const Outcome missing = run((dir / "none.nqf").string());
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(apptest::holds(missing.err, "No such file or directory"));
}

TEST_F(Nqfinfo, UsageAndHelp) {
    EXPECT_EQ(run("").status, 2);
    EXPECT_EQ(run("--bogus x.nqf").status, 2);
    EXPECT_EQ(run("a.nqf b.nqf").status, 2);
    const Outcome help = run("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(
        apptest::holds(help.out, "Exit status: 0 the file is valid, 1 the file is faulty or cannot be read"));
    EXPECT_TRUE(apptest::holds(help.out, "nqfinfo --json model.nqf"));
}

}  // namespace
