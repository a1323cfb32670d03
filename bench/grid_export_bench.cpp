// The export of the grid scene of bench/make_grid_scene.py (10^4 mesh nodes of 98 triangles each,
// 20 materials) in process, as DoExport runs under the headless host, and its optimisation stage
// alone: the tree optimisers, the number conversion and the render-node passes, from the
// "Optimizations..." display to the "Writing file..." one. The stage runs once the exporter's way
// and once with the straightforward passes of the tests (link questions that walk every user,
// welding that compares every vertex with every vertex, grouping that tests every node against
// every group), on the same walked model.
//
// The scene document is generated on first use into the build tree (python3 is needed).

#include <benchmark/benchmark.h>
#include <time.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <string>

#include <fmt/format.h>

#include "core/Vfs.h"
#include "exporter/NQModelExporter.h"
#include "exporter/UserSettings.h"
#include "model/BaseMeshRenderNode.h"
#include "model/utils/MaterialShells.h"
#include "model/utils/NumberNodeConverter.h"
#include "model/utils/Optimizers.h"
#include "model/utils/PrepareVertices.h"
#include "model/utils/VertexWorkers.h"
#include "scene/HeadlessInterface.h"
#include "scene/SceneLoader.h"
#include "utils/ReferenceMerging.h"

namespace {

namespace fs = std::filesystem;

// Manual times are CPU times of the process: the machine is shared, and wall time follows its load.
double cpuSeconds() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

const std::string& gridDocument() {
    static const std::string text = [] {
        const fs::path dir = fs::path(NQ_BINARY_DIR) / "bench" / "grid_scene";
        const fs::path file = dir / "grid_scene.json";
        if (!fs::exists(file)) {
            const std::string command =
                fmt::format("python3 {}/bench/make_grid_scene.py {} >/dev/null", NQ_SOURCE_DIR, dir.string());
            if (std::system(command.c_str()) != 0) {
                return std::string();
            }
        }
        std::ifstream in(file, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }();
    return text;
}

// Calls a hook when the exporter opens its optimisation display, and notes when the stage ends.
class StageHost : public scene::HeadlessInterface {
public:
    using HeadlessInterface::HeadlessInterface;
    void ProgressStart(const std::string& title, bool showBar, host::ProgressCallback callback,
                       void* argument) override {
        if (title == "Optimizations...") {
            stageStart = cpuSeconds();
            if (onOptimizations) {
                onOptimizations();
            }
        } else if (title == "Writing file...") {
            stageEnd = cpuSeconds();
        }
        HeadlessInterface::ProgressStart(title, showBar, callback, argument);
    }
    std::function<void()> onOptimizations;
    double stageStart = 0;
    double stageEnd = 0;
};

// The optimisation stage with the straightforward passes: what the exporter runs, in its order.
void straightforwardStage(model::RootNode& root) {
    model::utils::NodeHelpers links;
    links.replaceLinks = [&root](const model::Ptr<model::Node>& o, const model::Ptr<model::Node>& n) {
        return root.replaceLinks(o.get(), n);
    };
    links.isLinked = [&root](const model::Ptr<model::Node>& n) { return root.isLinked(n.get()); };
    links.linksOf = [&root](const model::Ptr<model::Node>& n) { return root.linksOf(n.get()); };
    model::utils::optimizeTransformations(root, std::move(links));
    model::numberNodeConverter(&root);
    model::utils::prepareVertices(root);
    // The weld runs twice, as in the exporter: once counted, once by the extreme workers.
    for (int pass = 0; pass < 2; ++pass) {
        for (const auto& node : root.renderNodes()) {
            if (auto* mesh = dynamic_cast<model::BaseMeshRenderNode*>(node.get())) {
                reference::weldVertices(mesh->vertices, mesh->indices, model::utils::kWeldTolerance);
            }
        }
    }
    model::utils::convertMaterialNodesToShells(root);
    reference::mergeRenderNodes(root);
    model::utils::remapOptimize(root);
}

// One export of the grid scene per iteration; with straightforward set, the straightforward stage
// runs on the walked model first (the exporter's own passes then find little left to do).
// Manual time (CPU): the whole export, or the optimisation stage alone.
void gridExport(benchmark::State& state, bool stageOnly, bool straightforward) {
    const std::string& document = gridDocument();
    if (document.empty()) {
        state.SkipWithError("can't generate the grid scene (python3 bench/make_grid_scene.py)");
        return;
    }
    nqvfs::mountNative("/");
    userSettings() = UserSettings();
    userSettings().setShowExportStat(false);
    const std::string target =
        (fs::temp_directory_path() / fmt::format("grid_export_bench_{}.nqf", ::getpid())).string();
    std::ostringstream messages;
    for (auto _ : state) {
        const double start = cpuSeconds();
        auto scene = scene::parseScene(document);
        scene::HeadlessInterface::Options options;
        options.err = &messages;
        options.terminal = false;
        options.plugCfgDir = NQ_BINARY_DIR;
        StageHost host(*scene, options);
        exporter::NQModelExporter exporter;
        double stage = 0;
        if (straightforward) {
            host.onOptimizations = [&] {
                const double begin = cpuSeconds();
                straightforwardStage(*exporter.rootNode);
                stage = cpuSeconds() - begin;
            };
        }
        if (exporter.DoExport(target.c_str(), nullptr, &host) != 1 || !fs::exists(target)) {
            state.SkipWithError("the export failed");
            break;
        }
        if (!straightforward) {
            stage = host.stageEnd - host.stageStart;
        }
        const double whole = cpuSeconds() - start;
        state.SetIterationTime(stageOnly ? stage : whole);
    }
    fs::remove(target);
}

void BM_GridExport(benchmark::State& state) {
    gridExport(state, false, false);
}
void BM_GridOptimisationStage(benchmark::State& state) {
    gridExport(state, true, false);
}
void BM_GridOptimisationStageStraightforward(benchmark::State& state) {
    gridExport(state, true, true);
}

// The load stage alone: the document parsed and the scene built (CPU time; the scene is released
// outside the timing). The whole form writes the key "nodes" with an escape, which the loader does
// not split at, so the document is parsed in one piece as it was before the node-by-node reading.
void gridLoad(benchmark::State& state, bool whole) {
    std::string document = gridDocument();
    if (document.empty()) {
        state.SkipWithError("can't generate the grid scene (python3 bench/make_grid_scene.py)");
        return;
    }
    if (whole) {
        const std::size_t key = document.find("\"nodes\":");
        document.replace(key, 7, "\"nod\\u0065s\"");
    }
    for (auto _ : state) {
        const double start = cpuSeconds();
        auto scene = scene::parseScene(document);
        state.SetIterationTime(cpuSeconds() - start);
        state.PauseTiming();
        scene.reset();
        state.ResumeTiming();
    }
}

void BM_GridLoad(benchmark::State& state) {
    gridLoad(state, false);
}
void BM_GridLoadWhole(benchmark::State& state) {
    gridLoad(state, true);
}

BENCHMARK(BM_GridLoad)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GridLoadWhole)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GridExport)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GridOptimisationStage)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GridOptimisationStageStraightforward)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
