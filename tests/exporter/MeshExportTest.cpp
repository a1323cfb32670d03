// Mesh extraction from scene documents, with a fixed table of materials in place of the keeper.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "exporter/ErrorTexts.h"
#include "exporter/MeshExport.h"
#include "exporter/ReportError.h"
#include "exporter/VertexRecord.h"
#include "model/ObjectRegistry.h"
#include "model/PropertyCreators.h"
#include "model/RenderNode.h"
#include "model/TransformNode.h"
#include "scene/SceneLoader.h"

namespace {

using exporter::PropertiesSetPtr;
using V3 = std::array<float, 3>;

// Materials by the name of the scene material; channel lists by model material.
class FixedMaterials : public exporter::MaterialSource {
public:
    PropertiesSetPtr getMaterial(host::Mtl* mtl, int kind, const char* modelClassName,
                                 host::INode*) override {
        requests.push_back(std::to_string(kind) + " " + modelClassName);
        auto it = byName.find(mtl->GetName());
        return it == byName.end() ? PropertiesSetPtr() : it->second;
    }
    void getTextureChannels(const model::PropertiesSet* material, std::vector<std::uint32_t>& out) override {
        out.clear();
        if (auto it = channels.find(material); it != channels.end()) {
            out = it->second;
        }
    }

    // A material with POSITION0 of 4, normals when asked, and two floats for each map channel.
    PropertiesSetPtr add(const std::string& name, bool normals = true,
                         std::vector<std::uint32_t> mapChannels = {}) {
        PropertiesSetPtr m(new model::PropertiesSet);
        m->vertexFormat[model::POSITION0] = 4;
        m->vertexFormat[model::NORMAL0] = normals ? 3 : 0;
        for (std::size_t i = 0; i < mapChannels.size(); ++i) {
            m->vertexFormat[model::TEXCOORD0 + static_cast<int>(i)] = 2;
        }
        channels[m.get()] = std::move(mapChannels);
        byName[name] = m;
        return m;
    }

    std::map<std::string, PropertiesSetPtr> byName;
    std::map<const model::PropertiesSet*, std::vector<std::uint32_t>> channels;
    std::vector<std::string> requests;
};

struct Export {
    std::unique_ptr<scene::Scene> scene;
    model::Ptr<model::RootNode> root = model::createAs<model::RootNode>("model::RootNode");
    model::Ptr<model::Node> parent = model::createAs<model::TransformNode>("model::TransformNode");
    std::vector<std::vector<std::uint32_t>> collected;

    // Exports the render nodes of the first scene node.
    void run(const std::string& json, FixedMaterials& materials,
             const exporter::NodeSettings& settings = {}) {
        scene = scene::parseScene(json);
        exporter::MeshContext context{0, &materials, root.get(),
                                      [this](const auto&, std::vector<std::uint32_t> groups) {
                                          collected.push_back(std::move(groups));
                                      }};
        host::INode* node = scene->root.GetChildNode(0);
        exporter::TriObjectHolder tri(node->EvalWorldState(0).obj, 0);
        ASSERT_TRUE(tri);
        exporter::exportRenderNodes(context, node, tri.mesh(), parent, settings);
    }
    model::RenderNode& node(std::size_t i) {
        return dynamic_cast<model::RenderNode&>(*root->renderNodes().at(i));
    }
};

// Exports the render nodes of the first scene node of json.
Export exportOf(const std::string& json, FixedMaterials& materials,
                const exporter::NodeSettings& settings = {}) {
    Export e;
    e.run(json, materials, settings);
    return e;
}

V3 attributeOf(const model::BaseMeshRenderNode& node, model::VertexSemantic s, std::uint32_t vertex) {
    const model::VertexAttribute& a = node.vertices.attribute(s);
    const auto at = static_cast<std::size_t>(a.size) * vertex;
    return {a.data.at(at), a.size > 1 ? a.data.at(at + 1) : 0.0f, a.size > 2 ? a.data.at(at + 2) : 0.0f};
}

void expectNear(const V3& a, const V3& b) {
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(a[i], b[i], 1e-5f) << i;
    }
}

// Six separate triangles along x, face i at x = i, with material ids 0 to 5.
const char* kSixFaces = R"({"materials": [
    {"class": ["0x200", "0x0"], "subMaterials": [1, null, 2]}, {"name": "a"}, {"name": "b"}, {"name": "gone"}],
  "nodes": [{"material": 0, "object": {"mesh": {
    "vertices": [[0,0,0],[0,1,0],[0,0,1], [1,0,0],[1,1,0],[1,0,1], [2,0,0],[2,1,0],[2,0,1],
                 [3,0,0],[3,1,0],[3,0,1], [4,0,0],[4,1,0],[4,0,1], [5,0,0],[5,1,0],[5,0,1]],
    "faces": [{"verts": [0,1,2], "materialId": 0}, {"verts": [3,4,5], "materialId": 1},
              {"verts": [6,7,8], "materialId": 2}, {"verts": [9,10,11], "materialId": 3},
              {"verts": [12,13,14], "materialId": 4}, {"verts": [15,16,17], "materialId": 5}]}}}]})";

TEST(MeshExport, MultiMaterialSlotsTakeTheirFacesByIdModuloCount) {
    FixedMaterials materials;
    PropertiesSetPtr a = materials.add("a"), b = materials.add("b");
    Export e = exportOf(kSixFaces, materials);
    // The empty slot makes no node, and its faces (ids 1 and 4) go nowhere.
    ASSERT_EQ(e.root->renderNodes().size(), 2u);
    EXPECT_EQ(materials.requests, (std::vector<std::string>{"0 model::RenderNode", "0 model::RenderNode"}));
    auto xsOf = [](const model::RenderNode& n) {
        std::vector<float> xs;
        for (std::uint32_t i : n.indices.indices) {
            xs.push_back(attributeOf(n, model::POSITION0, i)[0]);
        }
        return xs;
    };
    EXPECT_EQ(e.node(0).material, a);
    EXPECT_EQ(xsOf(e.node(0)), (std::vector<float>{0, 0, 0, 3, 3, 3}));
    // Id 5 over 3 sub-materials belongs to sub-material 2.
    EXPECT_EQ(e.node(1).material, b);
    EXPECT_EQ(xsOf(e.node(1)), (std::vector<float>{2, 2, 2, 5, 5, 5}));
}

TEST(MeshExport, NodesWithoutAConvertibleMaterialGiveNothing) {
    FixedMaterials materials;
    materials.add("a");
    const std::string mesh =
        R"("object": {"mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,2]]}})";
    for (const std::string& json :
         {R"({"nodes": [{)" + mesh + "}]}",
          R"({"materials": [{"name": "gone"}], "nodes": [{"material": 0, )" + mesh + "}]}",
          // A material that takes no face: ids 0 only, sub-material 1 of 2 is the one that converts.
          R"({"materials": [{"class": ["0x200", "0x0"], "subMaterials": [null, 1]}, {"name": "a"}],
              "nodes": [{"material": 0, )" +
              mesh + "}]}"}) {
        Export e = exportOf(json, materials);
        EXPECT_TRUE(e.root->renderNodes().empty()) << json;
        EXPECT_FALSE(e.parent->hasChildren()) << json;
    }
}

TEST(MeshExport, NameOffsetPropertiesAndTheSmoothingSeam) {
    FixedMaterials materials;
    materials.add("a");
    const std::string json = R"({"materials": [{"name": "a"}], "nodes": [{"name": "hull", "material": 0,
        "localTM": [[1,0,0],[0,1,0],[0,0,1],[10,0,0]], "objectOffsetTM": [[1,0,0],[0,1,0],[0,0,1],[0,0,5]],
        "object": {"mesh": {"box": {}}}}]})";
    exporter::NodeSettings settings;
    settings.properties.push_back(model::createFloatProperty("speed", 2));
    Export e = exportOf(json, materials, settings);
    ASSERT_EQ(e.root->renderNodes().size(), 1u);
    model::RenderNode& n = e.node(0);
    EXPECT_EQ(n.name, "hull");
    EXPECT_EQ(n.properties, settings.properties);
    ASSERT_EQ(n.links.size(), 1u);
    auto* offset = dynamic_cast<model::TransformNode*>(n.links[0].node.get());
    ASSERT_NE(offset, nullptr);
    EXPECT_EQ(offset->parent(), e.parent);
    EXPECT_EQ(offset->matrix(3, 2), 5.0);
    EXPECT_EQ(offset->matrix(3, 0), 0.0);
    EXPECT_TRUE(e.collected.empty());

    settings.smoothNormals = true;
    Export smoothed = exportOf(json, materials, settings);
    ASSERT_EQ(smoothed.collected.size(), 1u);
    // One group for each welded vertex: 4 corners on each of the 6 sides.
    ASSERT_EQ(smoothed.collected[0].size(), 24u);
    EXPECT_EQ(smoothed.collected[0][0], 1u);

    // A fault drops the render node and is reported with the node's name.
    settings.properties.push_back(model::createFloatProperty("__VERSION__", 1));
    exporter::clearErrors();
    Export official = exportOf(json, materials, settings);
    EXPECT_TRUE(official.root->renderNodes().empty());
    EXPECT_EQ(
        exporter::test::errorTexts(),
        std::vector<std::string>{"__VERSION__ property is official property, don't use it. Node: hull.\t"});
    exporter::clearErrors();
}

TEST(MeshExport, EqualCornersWeldBitForBit) {
    const std::string json = R"({"materials": [{"name": "a"}], "nodes": [{"material": 0,
        "object": {"mesh": {"box": {}}}}]})";
    FixedMaterials withNormals;
    withNormals.add("a");
    Export sides = exportOf(json, withNormals);
    EXPECT_EQ(sides.node(0).vertices.vertexCount(), 24u);
    EXPECT_EQ(sides.node(0).indices.indices.size(), 36u);
    FixedMaterials positionsOnly;
    positionsOnly.add("a", false);
    Export corners = exportOf(json, positionsOnly);
    EXPECT_EQ(corners.node(0).vertices.vertexCount(), 8u);

    std::vector<exporter::VertexRecord> records(3);
    records[1].position[0] = -0.0f;
    std::vector<std::uint32_t> indices{2, 1, 0, 1};
    exporter::weldRecords(records, indices);
    EXPECT_EQ(records.size(), 2u);
    EXPECT_EQ(indices, (std::vector<std::uint32_t>{0, 1, 0, 1}));
}

// One triangle with normal +z in the object's space, on a node with the given local matrix.
std::string triangleNode(const std::string& localTM) {
    return R"({"materials": [{"name": "a"}], "nodes": [{"material": 0, "localTM": )" + localTM +
           R"(, "object": {"mesh": {"vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [{"verts": [0,1,2], "smoothing": 1}]}}}]})";
}

TEST(MeshExport, MirroredNodeKeepsItsOutwardSide) {
    FixedMaterials materials;
    materials.add("a");
    for (const auto& [localTM, mirrored] :
         {std::pair<std::string, bool>{"[[1,0,0],[0,1,0],[0,0,1],[0,0,0]]", false},
          std::pair<std::string, bool>{"[[-1,0,0],[0,1,0],[0,0,1],[0,0,0]]", true},
          std::pair<std::string, bool>{"[[-1,0,0],[0,-1,0],[0,0,1],[0,0,0]]", false}}) {
        Export e = exportOf(triangleNode(localTM), materials);
        ASSERT_EQ(e.root->renderNodes().size(), 1u);
        host::Matrix3 tm = e.scene->root.GetChildNode(0)->GetObjectTM(0);
        EXPECT_EQ(exporter::isMirrored(tm), mirrored);
        const model::RenderNode& n = e.node(0);
        std::array<host::Point3, 3> w;
        for (std::size_t k = 0; k < 3; ++k) {
            V3 p = attributeOf(n, model::POSITION0, n.indices.indices[k]);
            w[k] = host::Point3(p[0], p[1], p[2]) * tm;
        }
        const host::Point3 a = w[1] - w[0], b = w[2] - w[0];
        // The triangle as drawn in the world faces the way its normal, carried into the world, points.
        const float windingZ = a.x * b.y - a.y * b.x;
        EXPECT_GT(windingZ, 0.0f) << localTM;
        expectNear(attributeOf(n, model::NORMAL0, 0), {0, 0, 1});
    }
}

TEST(MeshExport, CornerNormalsFollowTheRenderVertices) {
    FixedMaterials materials;
    materials.add("a");
    // Face A lies in z = 0 (normal +z); face B stands in x = 0 (normal -x); both share vertices 0 and 2.
    auto run = [&](int groupB, const std::string& extra = "") {
        Export e = exportOf(R"({"materials": [{"name": "a"}], "nodes": [{"material": 0, "object": {"mesh": {
            "vertices": [[0,0,0],[1,0,0],[0,1,0],[0,0,1]],
            "faces": [{"verts": [0,1,2], "smoothing": 1}, {"verts": [0,3,2], "smoothing": )" +
                                std::to_string(groupB) + "}]" + extra + "}}}]}",
                            materials);
        return e;
    };
    auto normalAtCorner = [](Export& e, std::size_t corner) {
        const model::RenderNode& n = e.node(0);
        return attributeOf(n, model::NORMAL0, n.indices.indices.at(corner));
    };
    // B without a smoothing group takes its face normal; A's corner at the shared vertex keeps A's.
    Export plain = run(0);
    expectNear(normalAtCorner(plain, 0), {0, 0, 1});
    expectNear(normalAtCorner(plain, 3), {-1, 0, 0});
    // Sharing group 1, both faces meet in one normal at the shared vertices.
    Export smooth = run(1);
    const float h = std::sqrt(0.5f);
    expectNear(normalAtCorner(smooth, 0), {-h, 0, h});
    expectNear(normalAtCorner(smooth, 3), {-h, 0, h});
    expectNear(normalAtCorner(smooth, 1), {0, 0, 1});
    // A specified normal wins over the groups.
    Export specified = run(1, R"(, "normals": [{"vertex": 0, "normal": [0, 1, 0]}])");
    expectNear(normalAtCorner(specified, 0), {0, 1, 0});
    expectNear(normalAtCorner(specified, 3), {0, 1, 0});

    // A face without area and without a group gets (0, 1, 0).
    Export degenerate =
        exportOf(R"({"materials": [{"name": "a"}], "nodes": [{"material": 0, "object": {"mesh": {
        "vertices": [[0,0,0],[1,0,0],[2,0,0]], "faces": [[0,1,2]]}}}]})",
                 materials);
    expectNear(normalAtCorner(degenerate, 0), {0, 1, 0});
}

TEST(MeshExport, TextureCoordinatesByChannelWithTransformsAndFlippedV) {
    FixedMaterials materials;
    // Positions: 0 from map 1, 1 from map 2 (empty), 2 from map 1 again under a transform, 3 from
    // map 7, which the mesh does not have.
    PropertiesSetPtr m = materials.add("a", false, {1, 2, 1, 7});
    m->textureChannels[0] = 0;  // Diffuse
    m->textures[0].name = "plain";
    m->textureChannels[4] = 2;  // Dirt, scaled by 2 and moved by (0.5, 0.25)
    m->textures[4].name = "dirt";
    m->textures[4].matrix(0, 0) = 2;
    m->textures[4].matrix(1, 1) = 2;
    m->textures[4].matrix(3, 0) = 0.5f;
    m->textures[4].matrix(3, 1) = 0.25f;
    Export e = exportOf(R"({"materials": [{"name": "a"}], "nodes": [{"material": 0, "object": {"mesh": {
        "vertices": [[0,0,0],[1,0,0],[0,1,0]], "faces": [[0,1,2]],
        "maps": [{"channel": 1, "vertices": [[0.25, 0.125], [1, 0], [0, 1]], "faces": [[0, 1, 2]]},
                 {"channel": 2, "vertices": [[0.5, 0.5]]}]}}}]})",
                        materials);
    const model::RenderNode& n = e.node(0);
    const std::uint32_t first = n.indices.indices[0];
    auto uv = [&](int channel) {
        V3 t = attributeOf(n, static_cast<model::VertexSemantic>(model::TEXCOORD0 + channel), first);
        return std::array<float, 2>{t[0], t[1]};
    };
    EXPECT_EQ(uv(0), (std::array<float, 2>{0.25f, 0.875f}));
    EXPECT_EQ(uv(1), (std::array<float, 2>{0, 0}));
    EXPECT_EQ(uv(2), (std::array<float, 2>{1.0f, 1.0f - 0.5f}));
    EXPECT_EQ(uv(3), (std::array<float, 2>{0, 0}));
}

TEST(MeshExport, TangentsFollowTheNormalMapChannel) {
    FixedMaterials materials;
    PropertiesSetPtr m = materials.add("a", true, {1});
    m->textureChannels[1] = 0;  // NormalMap
    m->vertexFormat[model::TANGENT0] = 3;
    m->vertexFormat[model::BINORMAL0] = 3;
    Export e = exportOf(R"({"materials": [{"name": "a"}], "nodes": [{"material": 0, "object": {"mesh": {
        "vertices": [[0,0,0],[2,0,0],[0,2,0],[2,2,0]],
        "faces": [{"verts": [0,1,2], "smoothing": 1}, {"verts": [2,1,3], "smoothing": 1}],
        "maps": [{"channel": 1, "vertices": [[0,0],[1,0],[0,1],[1,1]], "faces": [[0,1,2],[2,1,3]]}]}}}]})",
                        materials);
    const model::RenderNode& n = e.node(0);
    ASSERT_EQ(n.vertices.vertexCount(), 4u);
    for (std::uint32_t v = 0; v < 4; ++v) {
        expectNear(attributeOf(n, model::TANGENT0, v), {1, 0, 0});
        // The stored v runs against the map's v, and so does the binormal.
        expectNear(attributeOf(n, model::BINORMAL0, v), {0, -1, 0});
    }
}

// The corners of random meshes against the plain rule: one record per corner taken, welded bit
// for bit. The meshes repeat positions and map vertices, have faces without area, several
// smoothing groups, specified normals, mirrored nodes and two sub-materials.
TEST(MeshExport, WeldedCornersMatchOneRecordPerCornerOnRandomMeshes) {
    FixedMaterials materials;
    PropertiesSetPtr m = materials.add("a", true, {1, 2, 7});
    std::mt19937 random(11);
    auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int round = 0; round < 40; ++round) {
        const int vertexCount = 3 + pick(10), faceCount = 1 + pick(30), mapVertexCount = 1 + pick(5);
        std::string vertices, faces, mapVertices, mapFaces;
        for (int v = 0; v < vertexCount; ++v) {
            vertices += (v ? "," : "") + fmt::format("[{},{},{}]", pick(3), pick(2), pick(3) * 0.5);
        }
        for (int f = 0; f < faceCount; ++f) {
            const int groups[] = {0, 1, 2, 3, 4, 6};
            faces +=
                (f ? "," : "") + fmt::format(R"({{"verts": [{},{},{}], "smoothing": {}, "materialId": {}}})",
                                             pick(vertexCount), pick(vertexCount), pick(vertexCount),
                                             groups[pick(6)], pick(2));
            mapFaces += (f ? "," : "") + fmt::format("[{},{},{}]", pick(mapVertexCount), pick(mapVertexCount),
                                                     pick(mapVertexCount));
        }
        for (int t = 0; t < mapVertexCount; ++t) {
            mapVertices += (t ? "," : "") + fmt::format("[{},{}]", pick(2) * 0.25, pick(2));
        }
        const std::string json = fmt::format(
            R"({{"materials": [{{"class": ["0x200", "0x0"], "subMaterials": [1, 1]}}, {{"name": "a"}}],
                "nodes": [{{"material": 0, "localTM": [[{},0,0],[0,1,0],[0,0,1],[0,0,0]], "object": {{"mesh": {{
                "vertices": [{}], "faces": [{}], "normals": [{}],
                "maps": [{{"channel": 1, "vertices": [{}], "faces": [{}]}},
                         {{"channel": 2, "vertices": [[0.5, 0.5]]}}]}}}}}}]}})",
            round % 3 ? 1 : -1, vertices, faces,
            round % 4 ? "" : fmt::format(R"({{"vertex": {}, "normal": [0, -0.0, 1]}})", pick(vertexCount)),
            mapVertices, mapFaces);
        Export e = exportOf(json, materials);
        host::Mesh& mesh = static_cast<host::TriObject*>(e.scene->root.GetChildNode(0)->GetObjectRef())->mesh;
        const bool mirrored = round % 3 == 0;
        std::size_t taken = 0;
        for (int slot = 0; slot < 2; ++slot) {
            std::vector<exporter::VertexRecord> records;
            std::vector<std::uint32_t> indices;
            for (int f = 0; f < faceCount; ++f) {
                const host::Face& face = mesh.faces[static_cast<std::size_t>(f)];
                if (face.getMatID() % 2 != slot) {
                    continue;
                }
                for (int i = 0; i < 3; ++i) {
                    const int k = mirrored ? 2 - i : i;
                    exporter::VertexRecord r;
                    const host::Point3& p = mesh.verts[face.v[k]];
                    const host::Point3 n = exporter::cornerNormal(mesh, f, k);
                    const host::Point3& uv =
                        mesh.maps[1].tv[mesh.maps[1].tf[static_cast<std::size_t>(f)].t[k]];
                    r.position = {p.x, p.y, p.z};
                    r.normal = {n.x, n.y, n.z};
                    r.smoothingGroup = face.smGroup;
                    r.texCoords = {{uv.x, 1.0f - uv.y}, {0, 0}, {0, 0}};
                    indices.push_back(static_cast<std::uint32_t>(records.size()));
                    records.push_back(r);
                }
            }
            if (records.empty()) {
                continue;
            }
            exporter::weldRecords(records, indices);
            const model::RenderNode& n = e.node(taken++);
            ASSERT_EQ(n.vertices.vertexCount(), records.size()) << json;
            EXPECT_EQ(n.indices.indices, indices) << json;
            for (std::uint32_t v = 0; v < records.size(); ++v) {
                const exporter::VertexRecord& r = records[v];
                const V3 uv0 = attributeOf(n, model::TEXCOORD0, v), uv1 = attributeOf(n, model::TEXCOORD1, v);
                const std::array<float, 7> expected{r.texCoords[0][0], r.texCoords[0][1], 0,          0,
                                                    r.normal[0],       r.normal[1],       r.normal[2]};
                const V3 normal = attributeOf(n, model::NORMAL0, v);
                const std::array<float, 7> actual{uv0[0],    uv0[1],    uv1[0],   uv1[1],
                                                  normal[0], normal[1], normal[2]};
                EXPECT_EQ(std::memcmp(expected.data(), actual.data(), sizeof expected), 0) << json;
                EXPECT_EQ(attributeOf(n, model::POSITION0, v), r.position);
            }
        }
        EXPECT_EQ(e.root->renderNodes().size(), taken);
    }
}

}  // namespace
