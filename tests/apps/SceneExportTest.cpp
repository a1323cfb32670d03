// Scene documents with meshes and materials, exported by nqfexport and read back through
// nqfinfo --json: what an artist's scene turns into, checked on the file as a renderer reads it.

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include <simdjson.h>

#include "ProgramRun.h"

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t kNone = 0xFFFFFFFFu;

// One render node of the file: its name, the material's position and its interleaved vertices.
struct RenderMesh {
    std::string name;
    std::uint64_t material = 0;
    std::size_t stride = 0;
    std::vector<double> data;
    std::vector<std::uint64_t> indices;

    std::size_t count() const { return stride ? data.size() / stride : 0; }
    std::array<double, 3> at(std::size_t vertex, std::size_t offset) const {
        const double* f = data.data() + vertex * stride + offset;
        return {f[0], f[1], f[2]};
    }
};

std::vector<std::uint64_t> uints(simdjson::dom::array array) {
    std::vector<std::uint64_t> out;
    for (simdjson::dom::element e : array) {
        out.push_back(e.get_uint64());
    }
    return out;
}

// Exports a document of tests/scenes with nqfexport into a scratch directory and, when a file was
// written, reads it back with nqfinfo --json.
class SceneExport : public apptest::ProgramTest {
protected:
    // Runs the export; `status`, `err` and `written` tell how it went, `doc` holds the file.
    void exportScene(const std::string& scene) {
        target = dir / "out.nqf";
        const apptest::Outcome exported = runExport(apptest::scenePath(scene) + " -o " + target.string());
        status = exported.status;
        err = exported.err;
        written = fs::exists(target);
        if (!written) {
            return;
        }
        const apptest::Outcome info = runProgram("nqfinfo", "--json " + target.string());
        ASSERT_EQ(info.status, 0) << info.err;
        json = info.out;
        ASSERT_EQ(parser.parse(json).get(doc), simdjson::SUCCESS) << json.substr(0, 400);
    }

    simdjson::dom::array materials() { return doc["root"]["materials"].get_array(); }
    std::string materialField(std::uint64_t index, const char* field) {
        return std::string(materials().at(index)[field].get_string().value());
    }

    // The render nodes in file order. Their vertices must be in model space: the tree above them
    // has folded down to the one plain node.
    std::vector<RenderMesh> renderMeshes() {
        std::vector<RenderMesh> meshes;
        simdjson::dom::array tree = doc["tree"].get_array();
        EXPECT_EQ(tree.size(), 1u);
        EXPECT_EQ(std::string_view(tree.at(0)["class"].get_string()), "model::Node");
        for (simdjson::dom::element group : doc["groups"].get_array()) {
            if (std::string_view(group["name"].get_string()) != "RENDER_NODES") {
                continue;
            }
            for (simdjson::dom::element node : group["nodes"].get_array()) {
                RenderMesh m;
                m.name = std::string(node["name"].get_string().value());
                m.material = node["material"].get_uint64();
                m.stride = node["vertices"]["floatsPerVertex"].get_uint64();
                for (simdjson::dom::element f : node["vertices"]["data"].get_array()) {
                    m.data.push_back(f.get_double());
                }
                EXPECT_EQ(m.count(), node["vertices"]["count"].get_uint64().value());
                m.indices = uints(node["indices"]["values"].get_array());
                meshes.push_back(std::move(m));
            }
        }
        return meshes;
    }

    // Whether the error output holds `text` followed by a line number and a full stop.
    bool reported(const std::string& text) const {
        const std::size_t at = err.find(text);
        return at != std::string::npos &&
               std::regex_search(err.substr(at + text.size()), std::regex("^[0-9]+\\.\n"));
    }

    fs::path target;
    int status = -1;
    bool written = false;
    std::string err, json;
    simdjson::dom::parser parser;
    simdjson::dom::element doc;
};

TEST_F(SceneExport, BoxWithADiffuseBitmap) {
    ASSERT_NO_FATAL_FAILURE(exportScene("textured_box.json"));
    ASSERT_EQ(status, 0) << err;
    ASSERT_EQ(materials().size(), 1u);
    EXPECT_EQ(materialField(0, "name"), "CrateWood");
    EXPECT_EQ(materialField(0, "materialName"), "diffuse_solid");
    // Positions, normals and one channel of coordinates.
    std::vector<std::uint64_t> format(27, 0);
    format[0] = 4, format[1] = 3, format[4] = 2;
    EXPECT_EQ(uints(materials().at(0)["vertexFormat"].get_array()), format);
    std::vector<std::uint64_t> channels(13, kNone);
    channels[0] = 0;
    EXPECT_EQ(uints(materials().at(0)["textureChannels"].get_array()), channels);
    simdjson::dom::array textures = materials().at(0)["textures"].get_array();
    ASSERT_EQ(textures.size(), 1u);
    EXPECT_EQ(textures.at(0)["slot"].get_uint64().value(), 0u);
    // The path's folder, extension and capitals are gone.
    EXPECT_EQ(std::string_view(textures.at(0)["name"].get_string()), "crate_diffuse");

    const std::vector<RenderMesh> meshes = renderMeshes();
    ASSERT_EQ(meshes.size(), 1u);
    EXPECT_EQ(meshes[0].name, "crate");
    // Six sides of their own smoothing group and map face: four corners each, two triangles.
    EXPECT_EQ(meshes[0].count(), 24u);
    EXPECT_EQ(meshes[0].indices.size(), 36u);
    // Each side spans the map from corner to corner, stored with v flipped.
    for (std::size_t v = 0; v < meshes[0].count(); ++v) {
        const double u = meshes[0].data[v * meshes[0].stride + 7];
        const double w = meshes[0].data[v * meshes[0].stride + 8];
        EXPECT_TRUE((u == 0 || u == 1) && (w == 0 || w == 1)) << u << ", " << w;
    }
}

TEST_F(SceneExport, MultiMaterialTakesIdsModuloItsSlotsAndSkipsTheEmptyOne) {
    ASSERT_NO_FATAL_FAILURE(exportScene("meshes.json"));
    ASSERT_EQ(status, 0) << err;
    const std::vector<RenderMesh> meshes = renderMeshes();
    // Ids 0 to 5 over three slots: 0 and 3 to "Paint", 2 and 5 to "Glass", 1 and 4 to the empty
    // slot, which exports nothing; the mesh without a material gives no render node either.
    ASSERT_EQ(meshes.size(), 2u);
    EXPECT_TRUE(apptest::holds(err, "nRenderNodes: 2"));
    EXPECT_FALSE(apptest::holds(err, "time of"));  // timings only when asked
    for (const RenderMesh& m : meshes) {
        EXPECT_EQ(m.name, "hull");
        const std::string shader = materialField(m.material, "materialName");
        ASSERT_TRUE(shader == "solid" || shader == "glass") << shader;
        // The 2-unit box: scene bottom (z = 0) and right (x = 1), front (y = -1) and left (x = -1);
        // model space has y up and z towards the front.
        for (std::size_t v = 0; v < m.count(); ++v) {
            const auto p = m.at(v, 0);
            if (shader == "solid") {
                EXPECT_TRUE(p[1] == 0 || p[0] == 1) << p[0] << " " << p[1] << " " << p[2];
            } else {
                EXPECT_TRUE(p[2] == 1 || p[0] == -1) << p[0] << " " << p[1] << " " << p[2];
            }
        }
        EXPECT_EQ(m.count(), 8u);
        EXPECT_EQ(m.indices.size(), 12u);
    }
}

TEST_F(SceneExport, MirroredNodeKeepsItsOutwardSide) {
    ASSERT_NO_FATAL_FAILURE(exportScene("mirrored.json"));
    ASSERT_EQ(status, 0) << err;
    const std::vector<RenderMesh> meshes = renderMeshes();
    ASSERT_EQ(meshes.size(), 1u);  // both doors share the material and merge
    const RenderMesh& m = meshes[0];
    ASSERT_EQ(m.indices.size(), 72u);
    // Every triangle turns its front, counter-clockwise, the way its normals point: the plain door
    // at x > 0 and the mirrored one at x < 0 alike.
    int left = 0;
    for (std::size_t t = 0; t < m.indices.size(); t += 3) {
        const auto a = m.at(m.indices[t], 0), b = m.at(m.indices[t + 1], 0), c = m.at(m.indices[t + 2], 0);
        const std::array<double, 3> e1{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
        const std::array<double, 3> e2{c[0] - a[0], c[1] - a[1], c[2] - a[2]};
        const std::array<double, 3> front{e1[1] * e2[2] - e1[2] * e2[1], e1[2] * e2[0] - e1[0] * e2[2],
                                          e1[0] * e2[1] - e1[1] * e2[0]};
        const auto n = m.at(m.indices[t], 4);
        EXPECT_GT(front[0] * n[0] + front[1] * n[1] + front[2] * n[2], 0.0) << "triangle " << t / 3;
        left += a[0] < 0 ? 1 : 0;
    }
    EXPECT_EQ(left, 12);
}

TEST_F(SceneExport, DeckMaterialWithAllEightBitmaps) {
    ASSERT_NO_FATAL_FAILURE(exportScene("deck.json"));
    ASSERT_EQ(status, 0) << err;
    ASSERT_EQ(materials().size(), 1u);
    EXPECT_EQ(materialField(0, "materialName"), "deck_material");
    EXPECT_EQ(materialField(0, "name"), "DeckPlanks");
    std::vector<std::uint64_t> format(27, 0);
    format[0] = 4, format[1] = 4, format[2] = 3, format[3] = 3, format[4] = 2, format[5] = 2;
    EXPECT_EQ(uints(materials().at(0)["vertexFormat"].get_array()), format);
    EXPECT_EQ(uints(materials().at(0)["textureChannels"].get_array()),
              (std::vector<std::uint64_t>{0, 0, 0, 1, 1, kNone, 1, 1, kNone, kNone, kNone, kNone, kNone}));
    std::vector<std::string> names;
    std::uint64_t slot = 0;
    for (simdjson::dom::element t : materials().at(0)["textures"].get_array()) {
        EXPECT_EQ(t["slot"].get_uint64().value(), slot++);
        names.emplace_back(t["name"].get_string().value());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"planks_color", "planks_normal", "planks_rm", "deck_color",
                                               "deck_rm", "deck_rain", "deck_damagemask", "deck_damage"}));
    const std::vector<RenderMesh> meshes = renderMeshes();
    ASSERT_EQ(meshes.size(), 1u);
    EXPECT_EQ(meshes[0].stride, 18u);
    EXPECT_EQ(meshes[0].count(), 24u);
    EXPECT_EQ(meshes[0].indices.size(), 36u);
}

TEST_F(SceneExport, DeckMaterialWithAMissingBitmapGivesTwoMessagesAndNoFile) {
    ASSERT_NO_FATAL_FAILURE(exportScene("deck_missing_bitmap.json"));
    EXPECT_EQ(status, 1);
    EXPECT_FALSE(written);
    EXPECT_TRUE(
        reported("'DamageMask' is not set. Material: 'DeckPlanks', node 'deck'. File: "
                 "Exporter\\src\\MtlKeeperHelpers.cpp:"))
        << err;
    EXPECT_TRUE(
        reported("DamageMask is not set. Material: 'DeckPlanks', node 'deck'. File: "
                 "Exporter\\src\\MtlKeeper.cpp:"))
        << err;
}

TEST_F(SceneExport, EqualSceneMaterialsShareOneModelMaterial) {
    ASSERT_NO_FATAL_FAILURE(exportScene("shared_materials.json"));
    ASSERT_EQ(status, 0) << err;
    // Two scene materials "Steel" of equal content become one; "Iron", equal but for its name,
    // stays apart.
    ASSERT_EQ(materials().size(), 2u);
    EXPECT_EQ(materialField(0, "name"), "Steel");
    EXPECT_EQ(materialField(1, "name"), "Iron");
    std::array<std::size_t, 2> vertices{};
    for (const RenderMesh& m : renderMeshes()) {
        ASSERT_LT(m.material, 2u);
        vertices[m.material] += m.count();
    }
    EXPECT_EQ(vertices[0], 48u);  // beam and girder
    EXPECT_EQ(vertices[1], 24u);
}

TEST_F(SceneExport, NineTextureChannelsAreTooManyAndNoFileIsWritten) {
    ASSERT_NO_FATAL_FAILURE(exportScene("nine_channels.json"));
    EXPECT_EQ(status, 1);
    EXPECT_FALSE(written);
    EXPECT_TRUE(
        reported("Too much texture coordinates channels in material: Overloaded. The maximal number of "
                 "texture coordinates channels is 8.\tFile: Exporter\\src\\MtlKeeper.cpp:"))
        << err;
}

}  // namespace
