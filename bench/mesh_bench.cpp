// Mesh extraction: a generated grid mesh with two map channels and patches of smoothing groups,
// turned into render nodes (render normals, corner records, weld, vertex assembly, tangents).
// Once as one scene node, once cut into nodes of 100 triangles. The target is linear cost: 4x the
// triangles at most 4.6x the time.

#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <vector>

#include "exporter/MaterialSource.h"
#include "exporter/MeshExport.h"
#include "host/Mesh.h"
#include "model/ObjectRegistry.h"
#include "model/RootNode.h"
#include "model/TransformNode.h"
#include "scene/Scene.h"

namespace {

// One normal-mapped material: positions, normals, tangents and binormals, two coordinate
// channels from map channels 1 and 2, the normal map on the first.
class OneMaterial : public exporter::MaterialSource {
public:
    OneMaterial() : material_(new model::PropertiesSet) {
        material_->vertexFormat[model::POSITION0] = 4;
        material_->vertexFormat[model::NORMAL0] = 3;
        material_->vertexFormat[model::TANGENT0] = 3;
        material_->vertexFormat[model::BINORMAL0] = 3;
        material_->vertexFormat[model::TEXCOORD0] = 2;
        material_->vertexFormat[model::TEXCOORD1] = 2;
        material_->textureChannels[0] = 0;
        material_->textureChannels[1] = 0;
        material_->textureChannels[3] = 1;
    }
    exporter::PropertiesSetPtr getMaterial(host::Mtl*, int, const char*, host::INode*) override {
        return material_;
    }
    void getTextureChannels(const model::PropertiesSet*, std::vector<std::uint32_t>& out) override {
        out = {1, 2};
    }

private:
    exporter::PropertiesSetPtr material_;
};

// A wavy grid of `columns` x `rows` quads, two triangles each. Blocks of 8 x 8 quads share one
// smoothing group (neighbouring blocks differ), so there are seams where corners split. Map
// channel 1 follows the grid; map channel 2 has its own vertices for each block (a second seam
// pattern).
host::Mesh gridMesh(int columns, int rows) {
    host::Mesh mesh;
    const auto at = [&](int x, int y) { return static_cast<host::DWORD>(y * (columns + 1) + x); };
    for (int y = 0; y <= rows; ++y) {
        for (int x = 0; x <= columns; ++x) {
            const float h = static_cast<float>(((x * 7 + y * 13) % 17)) * 0.05f;
            mesh.verts.emplace_back(static_cast<float>(x), static_cast<float>(y), h);
        }
    }
    mesh.maps.resize(3);
    host::MeshMap& grid = mesh.maps[1];
    host::MeshMap& blocks = mesh.maps[2];
    grid.tv.reserve(mesh.verts.size());
    for (int y = 0; y <= rows; ++y) {
        for (int x = 0; x <= columns; ++x) {
            grid.tv.emplace_back(static_cast<float>(x) / static_cast<float>(columns),
                                 static_cast<float>(y) / static_cast<float>(rows), 0.0f);
        }
    }
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < columns; ++x) {
            const int block = (y / 8) * ((columns + 7) / 8) + x / 8;
            const host::DWORD group = 1u << (((y / 8) % 2) * 2 + (x / 8) % 2);
            // Four map vertices of channel 2 for this quad, placed within its block.
            const host::DWORD first = static_cast<host::DWORD>(blocks.tv.size());
            for (int corner = 0; corner < 4; ++corner) {
                const float u = static_cast<float>(x % 8 + corner % 2) / 8.0f;
                const float v = static_cast<float>(y % 8 + corner / 2) / 8.0f;
                blocks.tv.emplace_back(u + static_cast<float>(block % 4), v, 0.0f);
            }
            const host::DWORD quad[4] = {at(x, y), at(x + 1, y), at(x, y + 1), at(x + 1, y + 1)};
            const int triangles[2][3] = {{0, 1, 3}, {0, 3, 2}};
            for (const auto& t : triangles) {
                host::Face face;
                host::TVFace gridFace, blockFace;
                for (int k = 0; k < 3; ++k) {
                    face.v[k] = quad[t[k]];
                    gridFace.t[k] = quad[t[k]];
                    blockFace.t[k] = first + static_cast<host::DWORD>(t[k]);
                }
                face.smGroup = group;
                mesh.faces.push_back(face);
                grid.tf.push_back(gridFace);
                blocks.tf.push_back(blockFace);
            }
        }
    }
    return mesh;
}

// Scene nodes, each with a triangle object holding one grid, side by side.
struct GridScene {
    scene::Scene scene;
    std::vector<host::TriObject*> objects;
    std::size_t triangles = 0;

    GridScene(int nodes, int columns, int rows) {
        for (int i = 0; i < nodes; ++i) {
            auto object = std::make_unique<host::TriObject>();
            object->mesh = gridMesh(columns, rows);
            triangles += object->mesh.faces.size();
            scene::SceneNode& node = scene.root.addChild();
            node.name = "grid";
            node.localTM.SetTrans(host::Point3(static_cast<float>(i % 100) * (columns + 1.0f),
                                               static_cast<float>(i / 100) * (rows + 1.0f), 0));
            node.object = &scene.addObject(std::move(object));
            objects.push_back(static_cast<host::TriObject*>(node.object));
        }
    }
};

void extract(benchmark::State& state, GridScene& grids) {
    OneMaterial material;
    const exporter::NodeSettings settings;
    for (auto _ : state) {
        model::Ptr<model::RootNode> root = model::createAs<model::RootNode>("model::RootNode");
        model::Ptr<model::Node> parent = model::createAs<model::TransformNode>("model::TransformNode");
        const exporter::MeshContext context{0, &material, root.get(), {}};
        for (std::size_t i = 0; i < grids.objects.size(); ++i) {
            grids.objects[i]->mesh.buildRenderNormals();
            exporter::exportRenderNode(context, grids.scene.root.GetChildNode(static_cast<int>(i)),
                                       grids.objects[i]->mesh, parent, nullptr, 1, 0, settings);
        }
        if (root->renderNodes().size() != grids.objects.size()) {
            state.SkipWithError("a render node is missing");
            break;
        }
        benchmark::DoNotOptimize(root);
    }
    state.counters["triangles/s"] = benchmark::Counter(static_cast<double>(grids.triangles),
                                                       benchmark::Counter::kIsIterationInvariantRate);
}

// One node of range(0) x 500 quads: 10^6 triangles at 1000, 4 x 10^6 at 4000.
void BM_ExtractOneNode(benchmark::State& state) {
    GridScene grids(1, static_cast<int>(state.range(0)), 500);
    extract(state, grids);
}
BENCHMARK(BM_ExtractOneNode)->Arg(1000)->Arg(4000)->Unit(benchmark::kMillisecond);

// range(0) nodes of 10 x 5 quads, 100 triangles each: 10^6 triangles at 10^4 nodes.
void BM_ExtractNodesOf100Triangles(benchmark::State& state) {
    GridScene grids(static_cast<int>(state.range(0)), 10, 5);
    extract(state, grids);
}
BENCHMARK(BM_ExtractNodesOf100Triangles)->Arg(10000)->Arg(40000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
