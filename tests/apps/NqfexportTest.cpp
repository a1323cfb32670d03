// nqfexport as users run it: scene documents in, .nqf files out, read back with the reader.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <regex>
#include <variant>

#include "ProgramRun.h"
#include "exporter/UserSettings.h"
#include "model/io/NqfReader.h"

namespace fs = std::filesystem;

namespace {

using apptest::holds;
using apptest::Outcome;
using apptest::slurp;
using model::io::NqfDocument;
using model::io::NqfNode;

// The nodes of a file's groups of the given name.
std::vector<const NqfNode*> groupNodes(const NqfDocument& doc, std::string_view name) {
    std::vector<const NqfNode*> nodes;
    for (const auto& group : doc.groups) {
        for (const auto& node : group.nodes) {
            if (group.name == name) {
                nodes.push_back(&node);
            }
        }
    }
    return nodes;
}

std::vector<std::string> namesOf(const std::vector<const NqfNode*>& nodes) {
    std::vector<std::string> names;
    for (const NqfNode* node : nodes) {
        names.push_back(node->head.name);
    }
    return names;
}

class Nqfexport : public apptest::ProgramTest {
protected:
    static std::string scene(const std::string& name) { return apptest::scenePath(name); }
    Outcome run(const std::string& args) { return runExport(args); }
    // Exports a document of tests/scenes to `out`, the file `target` of the scratch directory.
    Outcome exportTo(const std::string& name, const std::string& target, const std::string& more = "") {
        out = dir / target;
        return run(scene(name) + " -o " + out.string() + more);
    }
    std::vector<std::string> connectorNames() { return namesOf(groupNodes(read(out), "CONNECTORS")); }
    NqfDocument read(const fs::path& file) {
        const std::string bytes = slurp(file);
        return model::io::readNqf(
            std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
    }
    fs::path out;
};

// Element (row, column) of a transform node's matrix.
double at(const NqfNode& node, int row, int column) {
    return std::get<model::io::NqfTransformBody>(node.body)
        .matrix[static_cast<std::size_t>(row * 4 + column)];
}

TEST_F(Nqfexport, EmptySceneFoldsDownToOnePlainNode) {
    // The conversion transform has nothing on it, so the optimisers take it away and the plain
    // node that held it stays as the whole tree.
    const Outcome r = exportTo("empty.json", "Empty.nqf");
    ASSERT_EQ(r.status, 0) << r.err;
    const NqfDocument doc = read(out);
    EXPECT_EQ(doc.root.head.name, "Scene Root");
    ASSERT_EQ(doc.tree.size(), 1u);
    EXPECT_EQ(doc.tree[0].head.className, "model::Node");
    EXPECT_TRUE(holds(r.err, "Export statistics: nTransformNodes: 1\n"));
}

TEST_F(Nqfexport, DefaultTargetIsBesideTheDocumentFolded) {
    fs::copy_file(scene("empty.json"), dir / "Mixed.json");
    const Outcome r = run((dir / "Mixed.json").string());
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(fs::exists(dir / "mixed.nqf"));
}

TEST_F(Nqfexport, OriginMovesTheTreeBeforeTheAxisChange) {
    const Outcome r = exportTo("origin.json", "origin.nqf");
    ASSERT_EQ(r.status, 0) << r.err;
    const NqfDocument doc = read(out);
    // The connector's transform takes in the conversion above it and becomes the whole tree.
    ASSERT_EQ(doc.tree.size(), 1u);
    EXPECT_EQ(doc.tree[0].head.className, "model::TransformNode");
    EXPECT_EQ(doc.tree[0].head.name, "mount");
    // mount at (5, 7, 11) less ORIGIN at (1, 2, 3) in scene units, then (x, y, z) -> (x, z, -y);
    // the axis change also turns the connector's own axes.
    const std::tuple<int, int, double> elements[] = {
        {3, 0, 4.0}, {3, 1, 8.0}, {3, 2, -5.0}, {1, 2, -1.0}, {2, 1, 1.0}};
    for (const auto& [row, column, value] : elements) {
        EXPECT_DOUBLE_EQ(at(doc.tree[0], row, column), value) << row << ", " << column;
    }
}

TEST_F(Nqfexport, BadDocumentExitsTwoWithThePathOfTheFault) {
    const Outcome r = exportTo("bad_document.json", "x.nqf");
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(holds(r.err, "bad_document.json: nodes[1].userProps"));
    EXPECT_FALSE(fs::exists(out));
}

TEST_F(Nqfexport, UsageErrorsExitTwo) {
    EXPECT_EQ(run("").status, 2);
    EXPECT_EQ(run(scene("empty.json") + " --no-such-flag").status, 2);
    EXPECT_EQ(run("/no/such/scene.json").status, 2);
}

TEST_F(Nqfexport, UnknownTypeWordIsAnErrorOnlyWhenAskedFor) {
    // Without the setting the node goes without settings and the file is written.
    Outcome r = exportTo("unknown_type.json", "unknown.nqf");
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_TRUE(fs::exists(out));
    fs::remove(out);

    UserSettings settings;
    settings.setErrorOnInvalidUserDefs(true);
    ASSERT_TRUE(settings.save(dir / "cfg" / "nqfexp.cfg"));
    r = exportTo("unknown_type.json", "unknown.nqf");
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(holds(r.err, "Unknown node type: wheel. Node: hull.\tFile: Exporter\\src\\NQModelExporter:"));
    EXPECT_FALSE(fs::exists(out));
}

TEST_F(Nqfexport, ConnectorNameOf64BytesIsAnError) {
    const Outcome r = exportTo("long_connector.json", "long.nqf");
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(holds(r.err,
                      "Node 'connector_with_a_name_that_is_far_too_long_for_the_file_format_x' has tool long "
                      "name for connector (64 vs. 64)! \tFile: Exporter\\src\\NQModelExporter:"));
    EXPECT_FALSE(fs::exists(out));
}

TEST_F(Nqfexport, ExampleHasBoxesAndConnectors) {
    out = dir / "example.nqf";
    const Outcome r = run(std::string(NQ_SOURCE_DIR) + "/examples/example.json -o " + out.string());
    ASSERT_EQ(r.status, 0) << r.err;
    const NqfDocument doc = read(out);
    // Every helper that passes the connector test is one; ORIGIN and Dummy01 are not.
    const std::vector<const NqfNode*> connectors = groupNodes(doc, "CONNECTORS");
    ASSERT_EQ(namesOf(connectors), (std::vector<std::string>{"bbox", "boom", "hook"}));
    // The user text gives the hook its load; the hidden hatch stays out.
    const auto& properties = connectors[2]->head.properties;
    ASSERT_EQ(properties.size(), 1u);
    EXPECT_EQ(properties[0].name, "load");
    EXPECT_EQ(properties[0].floats, std::vector<float>{250.0f});
    // The two painted boxes share one material with its diffuse bitmap, named as the file is
    // written: lower case, without folder and extension rules applied by the reader.
    ASSERT_EQ(doc.root.materials.size(), 1u);
    const model::io::NqfMaterial& paint = doc.root.materials[0];
    EXPECT_EQ(paint.materialName, "diffuse_solid");
    EXPECT_EQ(paint.name, "CranePaint");
    ASSERT_EQ(paint.textures.size(), 1u);
    EXPECT_EQ(paint.textures[0].slot, 0u);
    EXPECT_EQ(paint.textureChannels[0], 0u);
    EXPECT_TRUE(holds(r.err, "nRenderNodes: "));
    // The helper's box through the axis change: z (0..8) becomes y, y (-10..10) becomes -z.
    EXPECT_FLOAT_EQ(doc.root.boundingBox.min[1], 0.0f);
    EXPECT_FLOAT_EQ(doc.root.boundingBox.max[1], 8.0f);
    EXPECT_FLOAT_EQ(doc.root.userBox.max[2], 10.0f);
    EXPECT_TRUE(fs::exists(dir / "cfg" / "aux_func.lua"));
}

TEST_F(Nqfexport, HiddenParentsHideTheirSubtreeUnlessHiddenObjectsAreExported) {
    // The document has no file path: an unsaved scene exports to the name given.
    Outcome r = exportTo("hidden_and_reserved.json", "hidden.nqf");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(connectorNames(), std::vector<std::string>{"winch"});
    // TYPE given as a float is dropped and the other keys stay.
    const NqfDocument doc = read(out);
    for (const NqfNode* node : groupNodes(doc, "CONNECTORS")) {
        std::vector<std::string> names;
        for (const auto& p : node->head.properties) {
            names.push_back(p.name);
        }
        EXPECT_EQ(names, std::vector<std::string>{"load"});
    }
    r = exportTo("hidden_and_reserved.json", "hidden.nqf", " --set exportHiddenObjects=1");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(connectorNames(), (std::vector<std::string>{"mast", "flag", "winch"}));
}

TEST_F(Nqfexport, OverridesLastOneRunAndLeaveTheSettingsFileAlone) {
    UserSettings saved;
    saved.setShowNodeInfo(true);
    ASSERT_TRUE(saved.save(dir / "cfg" / "nqfexp.cfg"));
    const std::string before = slurp(dir / "cfg" / "nqfexp.cfg");
    Outcome r = exportTo("empty.json", "v11.nqf", " --set exportVersion=11");
    EXPECT_EQ(r.status, 1);
    EXPECT_TRUE(holds(r.err, "Unsupported version 11.\tFile: Exporter\\src\\NQModelExporter:"));
    EXPECT_FALSE(fs::exists(out));
    EXPECT_EQ(slurp(dir / "cfg" / "nqfexp.cfg"), before);

    r = exportTo("empty.json", "v11.nqf", " --set exportVersion=12");
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(holds(r.err, "nqfexport: --set exportVersion=12: exportVersion takes one of"));
    r = exportTo("empty.json", "v11.nqf", " --set nothing=1");
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(holds(r.err, "unknown setting \"nothing\""));
    EXPECT_FALSE(fs::exists(out));
}

TEST_F(Nqfexport, StatisticsAsJsonOnStdout) {
    const Outcome r = run(std::string(NQ_SOURCE_DIR) + "/examples/example.json -o " +
                          (dir / "stats.nqf").string() + " --stats json");
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.rfind("[{\"name\":\"nTransformNodes\",\"value\":", 0), 0u) << r.out;
    EXPECT_TRUE(holds(r.out, "{\"name\":\"nConnectors\",\"value\":3,\"children\":[]}"));
    EXPECT_FALSE(holds(r.err, "Export statistics"));
}

TEST_F(Nqfexport, CheckTextShowsWhatANodeGetsOrTheExactFault) {
    std::ofstream(dir / "good.txt") << "TYPE = \"connector\";\nload = 250.0;\n";
    Outcome r = run("--check-text " + (dir / "good.txt").string());
    EXPECT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out.rfind("TYPE: 0x2 (connector)\n", 0), 0u) << r.out;
    EXPECT_TRUE(holds(r.out, "Properties (1)\n  load = 250"));

    r = run("--check-text - < " + scene("unknown_type.json"));
    EXPECT_EQ(r.status, 1);
    std::ofstream(dir / "bad.txt") << "TYPE = \"renderable|wheel\"";
    r = run("--check-text " + (dir / "bad.txt").string());
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err, "Unknown node type: wheel\n");
    EXPECT_EQ(run("--check-text " + (dir / "missing.txt").string()).status, 2);
}

TEST_F(Nqfexport, ViewerGetsTheFileInPlaceOfTheFirstMarkOnly) {
    const fs::path viewer = dir / "viewer.sh";
    const fs::path record = dir / "viewer-args";
    std::ofstream(viewer) << "#!/bin/sh\nprintf '%s\\n' \"$@\" > " << (dir / "partial").string() << "\nmv "
                          << (dir / "partial").string() << " " << record.string() << "\n";
    fs::permissions(viewer, fs::perms::owner_all);
    const Outcome r = exportTo("empty.json", "viewed.nqf",
                               " --set runViewerAfterExport=1 --set viewerPath=" + viewer.string() +
                                   " '--set=viewerArgs=-open $FILE$ -log $FILE$'");
    ASSERT_EQ(r.status, 0) << r.err;
    // The viewer runs on its own; give it a moment to write what it was given.
    for (int i = 0; i < 200 && !fs::exists(record); ++i) {
        ::usleep(25000);
    }
    EXPECT_EQ(slurp(record), "-open\n" + out.string() + "\n-log\n$FILE$\n");
}

TEST_F(Nqfexport, ViewerThatCannotStartIsShownButTheExportStands) {
    const Outcome r =
        exportTo("empty.json", "noviewer.nqf",
                 " --set runViewerAfterExport=1 --set viewerPath=" + (dir / "no-viewer").string());
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(holds(r.err, "Error: Can't execute viewer.\n"));
    EXPECT_TRUE(fs::exists(out));
}

TEST_F(Nqfexport, TimingsNameEachStageInOrder) {
    const Outcome r = exportTo("meshes.json", "hull.nqf", " --timings");
    ASSERT_EQ(r.status, 0) << r.err;
    const std::regex line(R"(time of ([a-z ]+): ([0-9]+\.[0-9]{3}) s wall, ([0-9]+\.[0-9]{3}) s CPU)");
    std::vector<std::string> names;
    double sumCpu = 0;
    double totalCpu = -1;
    for (std::sregex_iterator it(r.err.begin(), r.err.end(), line), end; it != end; ++it) {
        names.push_back((*it)[1]);
        const double cpu = std::stod((*it)[3]);
        if (names.back() == "all stages") {
            totalCpu = cpu;
        } else {
            sumCpu += cpu;
        }
    }
    EXPECT_EQ(names,
              (std::vector<std::string>{"load", "walk", "optimisation", "write", "finish", "all stages"}))
        << r.err;
    // The total is the sum of the printed stages, give or take their rounding.
    EXPECT_NEAR(totalCpu, sumCpu, 0.003);
}

TEST_F(Nqfexport, MeshFaultsAreReportedAndKeepTheFileAway) {
    const Outcome r = exportTo("mesh_faults.json", "faults.nqf");
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_FALSE(fs::exists(out));
    for (const char* text :
         {"Unknown flag in node lamp. Expected 'renderable' or/and 'collision_shell'.\tFile: "
          "Exporter\\src\\Export:",
          "You should use type 'ik_bone' only in bones. Node 'arm'.\tFile: Exporter\\src\\Export:",
          "__VERSION__ property is official property, don't use it. Node: plate.\tFile: "
          "Exporter\\src\\Export:"}) {
        EXPECT_TRUE(holds(r.err, text));
    }
}

// 200 helpers in chains of four (none a connector), each chain's last helper holding a box; the
// boxes use three materials in turn. The optimisers fold the helpers away, baking their transforms
// into the boxes, and the merge leaves one render node per material.
TEST_F(Nqfexport, HelpersOverBoxesFoldDownToOneRenderNodePerMaterial) {
    std::string nodes;
    for (int chain = 0; chain < 50; ++chain) {
        std::string node = fmt::format(
            R"({{"name": "box{}", "material": {}, "localTM": [[1, 0, 0], [0, 1, 0], [0, 0, 1], [{}, 0, 0]],
                "object": {{"mesh": {{"box": {{}}}}}}}})",
            chain, chain % 3, chain * 3);
        for (int level = 3; level >= 0; --level) {
            node =
                fmt::format(R"({{"name": "helper{}", "localTM": [[1, 0, 0], [0, 1, 0], [0, 0, 1], [0, {}, 0]],
                "userProps": "NO_CONNECTOR = 1;", "object": {{"class": ["0x876234", "0x0"]}}, "children": [{}]}})",
                            chain * 4 + level, level, node);
        }
        nodes += (chain ? "," : "") + node;
    }
    const std::string material =
        R"({{"name": "{}", "attributes": [{{"class": ["0x7CB6596", "0x7E112E78"], "materialName": "solid"}}]}})";
    std::ofstream(dir / "yard.json") << fmt::format(
        R"({{"filePath": "/scenes/yard.max", "materials": [{},{},{}], "nodes": [{}]}})",
        fmt::format(fmt::runtime(material), "Red"), fmt::format(fmt::runtime(material), "Green"),
        fmt::format(fmt::runtime(material), "Blue"), nodes);

    out = dir / "yard.nqf";
    const Outcome r = run((dir / "yard.json").string() + " -o " + out.string());
    ASSERT_EQ(r.status, 0) << r.err;
    const NqfDocument doc = read(out);
    ASSERT_EQ(doc.tree.size(), 1u);
    EXPECT_EQ(doc.tree[0].head.className, "model::Node");
    const std::vector<const NqfNode*> renderNodes = groupNodes(doc, "RENDER_NODES");
    EXPECT_EQ(renderNodes.size(), 3u);
    std::uint32_t vertices = 0;
    for (const NqfNode* node : renderNodes) {
        vertices += std::get<model::io::NqfRenderBody>(node->body).vertices.count;
    }
    // Every box keeps its own 24 corners: boxes three units apart never weld.
    EXPECT_EQ(vertices, 50u * 24u);
    EXPECT_EQ(doc.root.materials.size(), 3u);
}

// A vertex of a file: position and normal as the file holds them.
struct FileVertex {
    std::array<double, 3> position{};
    std::array<double, 3> normal{};
};

// The vertices of all render nodes whose position lies in the plane x = 0.
std::vector<FileVertex> verticesOnPlaneX0(const NqfDocument& doc) {
    std::vector<FileVertex> out;
    for (const NqfNode* node : groupNodes(doc, "RENDER_NODES")) {
        const auto& body = std::get<model::io::NqfRenderBody>(node->body);
        const auto& format = doc.root.materials.at(body.material).vertexFormat;
        // Attributes are interleaved in the order of their semantics: POSITION0, then NORMAL0.
        const std::size_t normalAt = format[0];
        EXPECT_GE(format[1], 3u);
        for (std::uint32_t v = 0; v < body.vertices.count; ++v) {
            const float* f = &body.vertices.data[std::size_t{v} * body.vertices.floatsPerVertex];
            if (std::fabs(f[0]) <= 1e-4) {
                out.push_back({{f[0], f[1], f[2]}, {f[normalAt], f[normalAt + 1], f[normalAt + 2]}});
            }
        }
    }
    return out;
}

// Two unit-smoothed cubes, each under a helper with its own turn, touch along the plane x = 0.
// The optimisers bake the helpers into the vertices before the smoothing writes its normals back.
TEST_F(Nqfexport, CubesThatTouchShareTheirNormalsAlongTheSeamWhenSmoothingIsOn) {
    Outcome r = exportTo("smooth_seam.json", "seam.nqf");
    ASSERT_EQ(r.status, 0) << r.err;
    NqfDocument doc = read(out);
    // The tree folds down to its top node, so the file's vertices are in model space.
    ASSERT_EQ(doc.tree.size(), 1u);
    std::vector<FileVertex> seam = verticesOnPlaneX0(doc);
    ASSERT_FALSE(seam.empty());
    const double half = std::sqrt(0.5);
    for (const FileVertex& a : seam) {
        // Each cube alone would give the corner (+-1, +-1, +-1) / sqrt(3); together the seam's
        // sideways parts cancel and the normal lies in the plane.
        EXPECT_NEAR(a.normal[0], 0.0, 1e-5);
        EXPECT_NEAR(std::fabs(a.normal[1]), half, 1e-5);
        EXPECT_NEAR(std::fabs(a.normal[2]), half, 1e-5);
        for (const FileVertex& b : seam) {
            if (a.position == b.position) {
                EXPECT_EQ(a.normal, b.normal);
            }
        }
    }

    r = exportTo("smooth_seam.json", "seam.nqf", " --set smoothNormals=0");
    ASSERT_EQ(r.status, 0) << r.err;
    seam = verticesOnPlaneX0(read(out));
    // Four corners, each with one vertex from either cube, each with its own cube's normal.
    ASSERT_EQ(seam.size(), 8u);
    const double third = std::sqrt(1.0 / 3.0);
    int leftward = 0;
    for (const FileVertex& a : seam) {
        EXPECT_NEAR(std::fabs(a.normal[0]), third, 1e-5);
        leftward += a.normal[0] < 0;
    }
    EXPECT_EQ(leftward, 4);
}

TEST_F(Nqfexport, NormalsThatCancelAcrossNodesNameTheirNodesAndKeepTheFileAway) {
    // "upper" and "lower" are one triangle facing up and down; "apart" stands alone.
    const Outcome r = exportTo("smooth_cancel.json", "cancel.nqf");
    EXPECT_EQ(r.status, 1) << r.err;
    EXPECT_FALSE(fs::exists(out));
    EXPECT_TRUE(holds(r.err, "Node upper has zero normals.\n"));
    EXPECT_TRUE(holds(r.err, "Node lower has zero normals.\n"));
    EXPECT_FALSE(holds(r.err, "Node apart"));
}

}  // namespace
