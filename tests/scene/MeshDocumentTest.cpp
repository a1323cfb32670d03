// Triangle meshes in scene documents: the full form, the box shorthand, and the faults.

#include <gtest/gtest.h>

#include <set>
#include <string>

#include <fmt/format.h>

#include "host/Constants.h"
#include "host/Mesh.h"
#include "scene/SceneFault.h"
#include "scene/SceneLoader.h"

namespace {

host::Mesh& meshOf(scene::Scene& scene, int node = 0) {
    auto* tri = dynamic_cast<host::TriObject*>(scene.root.GetChildNode(node)->EvalWorldState(0).obj);
    if (!tri) {
        throw std::runtime_error("not a triangle object");
    }
    return tri->GetMesh();
}

TEST(MeshDocument, FullFormAsGiven) {
    auto scene = scene::parseScene(R"({"nodes": [{"object": {"superClass": "0x10", "mesh": {
        "vertices": [[0, 0, 0], [1, 0, 0], [0, 1, 0], [1, 1, 0]],
        "faces": [[0, 1, 2], {"verts": [2, 1.0, 3e0], "smoothing": 6, "materialId": 65535},
                  {"materialId": 7, "verts": [3, 2, 1], "smoothing": 4294967295},
                  {"smoothing": 2.0, "verts": [1, 2, 3]}],
        "maps": [{"channel": 3, "vertices": [[0, 0], [1, 0, 0.5]], "faces": [[0, 1, 1], [1, 1, 0], [0, 0, 0], [0, 0, 0]]}],
        "normals": [{"vertex": 3, "normal": [0, 0, -1]}]}}},
        {"object": {"class": ["0x9", "0x0"]}}]})");
    host::Mesh& mesh = meshOf(*scene);
    ASSERT_EQ(mesh.getNumVerts(), 4);
    ASSERT_EQ(mesh.getNumFaces(), 4);
    auto faceText = [&](int i) {
        const host::Face& f = mesh.faces[static_cast<std::size_t>(i)];
        return fmt::format("{} {} {} / {} / {}", f.v[0], f.v[1], f.v[2], f.smGroup, f.getMatID());
    };
    EXPECT_EQ(faceText(0), "0 1 2 / 0 / 0");
    EXPECT_EQ(faceText(1), "2 1 3 / 6 / 65535");
    EXPECT_EQ(faceText(2), "3 2 1 / 4294967295 / 7");
    EXPECT_EQ(faceText(3), "1 2 3 / 2 / 0");
    // Channels below the highest given exist and are empty.
    ASSERT_EQ(mesh.getNumMaps(), 4);
    EXPECT_EQ(mesh.Map(1).getNumVerts(), 0);
    EXPECT_EQ(mesh.Map(3).tv[1], host::Point3(1, 0, 0.5f));
    EXPECT_EQ(mesh.Map(3).tf[1].t[2], 0u);
    // The 2-number map vertex has a z of 0.
    EXPECT_EQ(mesh.Map(3).tv[0], host::Point3(0, 0, 0));
    mesh.buildRenderNormals();
    EXPECT_EQ(mesh.getRVertPtr(3)->rFlags, host::SPECIFIED_NORMAL | 1);

    // A triangle object without a mesh is an empty one, and converts to itself.
    host::Object* empty = scene->root.GetChildNode(1)->EvalWorldState(0).obj;
    EXPECT_EQ(meshOf(*scene, 1).getNumFaces(), 0);
    EXPECT_TRUE(empty->CanConvertToType(host::Class_ID(host::TRIOBJ_CLASS_ID, 0)));
    EXPECT_EQ(empty->ConvertToType(0, host::Class_ID(host::TRIOBJ_CLASS_ID, 0)), empty);
    EXPECT_FALSE(empty->CanConvertToType(host::Class_ID(host::SPLINESHAPE_CLASS_ID, 0)));
}

TEST(MeshDocument, BoxShorthand) {
    auto scene = scene::parseScene(R"({"nodes": [{"object": {"mesh": {"box":
        {"size": [2, 4, 6], "materialIds": [5, 4, 3, 2, 1, 0]}}}}, {"object": {"mesh": {"box": {}}}}]})");
    host::Mesh& mesh = meshOf(*scene);
    ASSERT_EQ(mesh.getNumVerts(), 8);
    ASSERT_EQ(mesh.getNumFaces(), 12);
    EXPECT_EQ(mesh.verts[7], host::Point3(1, 2, 6));
    EXPECT_EQ(mesh.verts[0], host::Point3(-1, -2, 0));
    std::set<host::DWORD> groups;
    mesh.buildRenderNormals();
    for (int f = 0; f < 12; ++f) {
        groups.insert(mesh.faces[static_cast<std::size_t>(f)].smGroup);
        EXPECT_EQ(mesh.faces[static_cast<std::size_t>(f)].getMatID(), 5 - f / 2);
        // Every face is wound outwards: its normal points away from the box's centre.
        host::Point3 out = mesh.FaceCenter(f) - host::Point3(0, 0, 3);
        host::Point3 n = mesh.getFaceNormal(f);
        EXPECT_GT(n.x * out.x + n.y * out.y + n.z * out.z, 0.0f) << "face " << f;
    }
    EXPECT_EQ(groups, (std::set<host::DWORD>{1, 2, 4, 8, 16, 32}));
    ASSERT_EQ(mesh.getNumMaps(), 2);
    EXPECT_EQ(mesh.Map(1).getNumFaces(), 12);
    EXPECT_EQ(meshOf(*scene, 1).verts[7], host::Point3(5, 5, 10));
}

TEST(MeshDocument, FaultsNameTheirPath) {
    auto expectFault = [](const std::string& mesh, const std::string& path, const std::string& message) {
        scenetest::Fault f = scenetest::faultIn(R"({"nodes": [{"object": {"mesh": )" + mesh + "}}]}");
        EXPECT_EQ(f.path, path) << mesh;
        EXPECT_EQ(f.message, message) << mesh;
    };
    const std::string tri = R"("vertices": [[0, 0, 0], [1, 0, 0], [0, 1, 0]], "faces": [[0, 1, 2]])";
    expectFault(R"({"vertices": [[0, 0, 0]], "faces": [[0, 0, 1]]})", "nodes[0].object.mesh.faces[0][2]",
                "expected an integer from 0 to 0");
    expectFault(R"({"faces": [[0, 1, 2]]})", "nodes[0].object.mesh.faces[0]", "the mesh has no vertices");
    expectFault(R"({"vertices": [[0, 0, 0]], "faces": [[0, 0]]})", "nodes[0].object.mesh.faces[0]",
                "expected the 3 vertex indices of a triangle");
    expectFault(R"({"vertices": [[0, 0, 0]], "faces": [{"smoothing": 1}]})",
                "nodes[0].object.mesh.faces[0].verts", "required: the 3 vertex indices of the face");
    expectFault(R"({"vertices": [[0, 0, 0]], "faces": [{"verts": [0, 0, 0], "materialId": 65536}]})",
                "nodes[0].object.mesh.faces[0].materialId", "expected an integer from 0 to 65535");
    expectFault(R"({"vertices": [[0, 0, 0]], "faces": [{"verts": [0, 0, 0], "smoothing": 4294967296}]})",
                "nodes[0].object.mesh.faces[0].smoothing", "expected an integer from 0 to 4294967295");
    expectFault(
        R"({"vertices": [[0, 0, 0]], "faces": [{"verts": [0, 0, 0], "smoothing": 1, "verts": [0, 0, 0]}]})",
        "nodes[0].object.mesh.faces[0].verts", "repeated field");
    expectFault(R"({"vertices": [[0, 0, 0]], "faces": [{"verts": [0, 0, 0], "smooth": 1}]})",
                "nodes[0].object.mesh.faces[0].smooth", "unknown field");
    expectFault(
        "{" + tri + R"(, "maps": [{"channel": 1, "vertices": [[0, 0]], "faces": [[0, 0, 0], [0, 0, 0]]}]})",
        "nodes[0].object.mesh.maps[0].faces",
        "a map has one face for each face of the mesh: expected 1, found 2");
    expectFault("{" + tri + R"(, "maps": [{"channel": 1, "vertices": [[0, 0]], "faces": [[0, 1, 0]]}]})",
                "nodes[0].object.mesh.maps[0].faces[0][1]", "expected an integer from 0 to 0");
    expectFault("{" + tri + R"(, "maps": [{"channel": 1, "vertices": [[0]]}]})",
                "nodes[0].object.mesh.maps[0].vertices[0]", "expected 2 or 3 numbers");
    expectFault(
        "{" + tri +
            R"(, "maps": [{"channel": 1, "vertices": [[0, 0]]}, {"channel": 1, "vertices": [[0, 0]]}]})",
        "nodes[0].object.mesh.maps[1].channel", "map channel 1 is given twice");
    expectFault("{" + tri + R"(, "maps": [{"vertices": []}]})", "nodes[0].object.mesh.maps[0].channel",
                "required: the number of the map channel");
    expectFault("{" + tri + R"(, "maps": [{"channel": 100}]})", "nodes[0].object.mesh.maps[0].channel",
                "expected an integer from 0 to 99");
    expectFault("{" + tri + R"(, "normals": [{"vertex": 3, "normal": [0, 0, 1]}]})",
                "nodes[0].object.mesh.normals[0].vertex", "expected an integer from 0 to 2");
    expectFault("{" + tri + R"(, "normals": [{"vertex": 0}]})", "nodes[0].object.mesh.normals[0]",
                R"(required: both "vertex" and "normal")");
    expectFault(R"({"box": {"size": [1, 1, 1]}, "vertices": []})", "nodes[0].object.mesh",
                "a mesh is either a box or vertices and faces, not both");
    expectFault(R"({"box": {"materialIds": [1, 2]}})", "nodes[0].object.mesh.box.materialIds",
                "expected 6 material ids, one for each side");
    expectFault(R"({"triangles": []})", "nodes[0].object.mesh.triangles", "unknown field");
    // Vertices, map vertices and corners are read in bulk; a fault in any item still names it.
    expectFault(R"({"vertices": [[0, 0, 0], [0, 1e39, 0]]})", "nodes[0].object.mesh.vertices[1][1]",
                "number out of the range of a 32-bit float");
    expectFault(R"({"vertices": [[0, 0, 0]], "faces": [[0, -1, 0]]})", "nodes[0].object.mesh.faces[0][1]",
                "expected an integer from 0 to 0");
    expectFault(R"({"vertices": [[0, 0, 0]], "faces": [[0, 0, 0.5]]})", "nodes[0].object.mesh.faces[0][2]",
                "expected an integer");
    expectFault("{" + tri + R"(, "maps": [{"channel": 1, "vertices": [[0, 0], [0, "1"]]}]})",
                "nodes[0].object.mesh.maps[0].vertices[1][1]", "expected a number");
    expectFault("{" + tri + R"(, "maps": [{"channel": 1, "vertices": [[0, 0]], "faces": [[0, 0, true]]}]})",
                "nodes[0].object.mesh.maps[0].faces[0][2]", "expected an integer");

    scenetest::Fault helper =
        scenetest::faultIn(R"({"nodes": [{"object": {"superClass": "0x50", "mesh": {}}}]})");
    EXPECT_EQ(helper.path, "nodes[0].object.mesh");
    EXPECT_EQ(helper.message, "only triangle objects have a mesh");
}

}  // namespace
