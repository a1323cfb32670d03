// Smoothing normals across render nodes: a surface cut into patches, each patch a render node of
// a grid of vertices, neighbouring patches sharing their border rows. The indexed gather runs on
// 200 patches of 5,000 vertices; the plain pair walk of the tests runs beside it on smaller
// patches, where it still finishes.

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "model/NodeCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/utils/NormalSmoother.h"
#include "utils/ReferenceSmoothing.h"

namespace {

using namespace model;
using namespace model::utils;

// Patches of columns x rows vertices, 0.01 apart, on a wavy surface; 20 patches across and as many
// down as it takes for the count. Each patch sits in its own place through its world transform.
struct PatchScene {
    Ptr<RootNode> root;
    NormalSmoother smoother;

    PatchScene(int patches, int columns, int rows) {
        root = createNodeAs<RootNode>("model::RootNode");
        root->setRootNode(createNode("top"));
        const double step = 0.01;
        for (int p = 0; p < patches; ++p) {
            const int px = p % 20;
            const int py = p / 20;
            // Neighbours overlap by two rows or columns, whose vertices meet.
            const double ox = px * (columns - 2) * step;
            const double oy = py * (rows - 2) * step;
            std::vector<float> positions;
            std::vector<float> normals;
            std::vector<std::uint32_t> groups;
            for (int r = 0; r < rows; ++r) {
                for (int c = 0; c < columns; ++c) {
                    double x = c * step;
                    double y = r * step;
                    double z = 0.1 * std::sin(ox + x) * std::cos(oy + y);
                    positions.insert(positions.end(), {float(x), float(y), float(z), 0.0f});
                    normals.insert(normals.end(), {float(std::sin(x + p)), float(std::cos(y)), 1.0f});
                    groups.push_back(1u << (p % 3));
                    groups.back() |= 1u;
                }
            }
            Ptr<RenderNode> node = createNodeAs<RenderNode>("model::RenderNode");
            node->links.push_back(RenderLink{root->rootNode()});
            node->vertices.setAttribute(POSITION0, 4, std::move(positions));
            node->vertices.setAttribute(NORMAL0, 3, std::move(normals));
            root->addRenderNode(node);
            smoother.collect(node, nq::translateMatrix(nq::Vec3d{{ox, oy, 0.0}}), groups);
        }
    }
};

void BM_GatherIndexed(benchmark::State& state) {
    PatchScene scene(200, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    std::size_t clusters = 0;
    for (auto _ : state) {
        std::vector<SmoothCluster> result = gatherSmoothClusters(scene.smoother.nodes());
        clusters = result.size();
        benchmark::DoNotOptimize(result.data());
    }
    state.counters["clusters"] = static_cast<double>(clusters);
}
BENCHMARK(BM_GatherIndexed)->Args({20, 25})->Args({100, 50})->Unit(benchmark::kMillisecond);

void BM_GatherPlainWalk(benchmark::State& state) {
    PatchScene scene(200, static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state) {
        std::vector<SmoothCluster> result = smoothtest::referenceClusters(scene.smoother.nodes());
        benchmark::DoNotOptimize(result.data());
    }
}
BENCHMARK(BM_GatherPlainWalk)->Args({20, 25})->Unit(benchmark::kMillisecond);

// Collect, gather and apply, as an export runs them.
void BM_SmoothWhole(benchmark::State& state) {
    for (auto _ : state) {
        PatchScene scene(200, 100, 50);
        scene.smoother.gather();
        scene.smoother.apply();
        benchmark::DoNotOptimize(scene.smoother.clusters().data());
    }
}
BENCHMARK(BM_SmoothWhole)->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace

BENCHMARK_MAIN();
