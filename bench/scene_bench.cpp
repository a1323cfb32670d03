// Loading scene documents: a flat scene and a deep one of helper nodes with user text and
// matrices, measured in document bytes per second.

#include <benchmark/benchmark.h>

#include <string>

#include <fmt/format.h>

#include "scene/SceneLoader.h"

namespace {

std::string nodeText(int i, const std::string& children) {
    return fmt::format(
        R"({{"name": "node{0}", "userProps": "TYPE = \"renderable\"\r\nDAMAGE_ARGUMENT = {0}\r\n",)"
        R"( "localTM": [[1, 0, 0], [0, 0.5, 0.866025], [0, -0.866025, 0.5], [{0}.25, -3.5, 12.0]],)"
        R"( "object": {{"superClass": "0x50", "class": ["0x876234", "0x0"],)"
        R"( "box": {{"min": [-1, -1, -1], "max": [1, 1, 1]}}}}, "children": [{1}]}})",
        i, children);
}

std::string flatScene(int count) {
    std::string nodes;
    for (int i = 0; i < count; ++i) {
        nodes += (i ? "," : "") + nodeText(i, "");
    }
    return R"({"filePath": "/scenes/bench.max", "nodes": [)" + nodes + "]}";
}

// Chains of 200 nodes, each a child of the one before.
std::string deepScene(int count) {
    std::string nodes;
    for (int chain = 0; chain < count / 200; ++chain) {
        std::string node;
        for (int i = 199; i >= 0; --i) {
            node = nodeText(chain * 200 + i, node);
        }
        nodes += (chain ? "," : "") + node;
    }
    return R"({"nodes": [)" + nodes + "]}";
}

void loadDocument(benchmark::State& state, const std::string& text) {
    for (auto _ : state) {
        auto scene = scene::parseScene(text);
        benchmark::DoNotOptimize(scene.get());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
    state.counters["nodes"] = static_cast<double>(state.range(0));
}

void BM_LoadFlatScene(benchmark::State& state) {
    loadDocument(state, flatScene(static_cast<int>(state.range(0))));
}
void BM_LoadDeepScene(benchmark::State& state) {
    loadDocument(state, deepScene(static_cast<int>(state.range(0))));
}

BENCHMARK(BM_LoadFlatScene)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadDeepScene)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
