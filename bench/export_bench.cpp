// The whole export in process: a generated scene document of helper nodes in a tree of depth 12
// (a dummy and a point helper in turn; the point helpers become connectors) is loaded and
// exported to a file. The target is near-linear cost: 4x the nodes at most 4.6x the time.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "core/Vfs.h"
#include "exporter/NQModelExporter.h"
#include "exporter/UserSettings.h"
#include "scene/HeadlessInterface.h"
#include "scene/SceneLoader.h"

namespace {

constexpr int kDepth = 12;

// Node i hangs under node (i - 1) / fanOut, so that n nodes fill kDepth levels.
std::string helperTree(int count) {
    // The smallest fan-out whose tree of kDepth levels holds count nodes.
    const auto capacity = [](int fan) {
        double total = 0;
        double level = 1;
        for (int d = 0; d < kDepth; ++d, level *= fan) {
            total += level;
        }
        return total;
    };
    int fanOut = 2;
    while (capacity(fanOut) < count) {
        ++fanOut;
    }
    std::vector<std::vector<int>> children(static_cast<std::size_t>(count));
    for (int i = 1; i < count; ++i) {
        children[static_cast<std::size_t>((i - 1) / fanOut)].push_back(i);
    }
    // Written depth-first from the leaves up, without recursion.
    std::vector<std::string> text(static_cast<std::size_t>(count));
    for (int i = count - 1; i >= 0; --i) {
        std::string kids;
        for (int c : children[static_cast<std::size_t>(i)]) {
            kids += (kids.empty() ? "" : ",") + text[static_cast<std::size_t>(c)];
            text[static_cast<std::size_t>(c)].clear();
            text[static_cast<std::size_t>(c)].shrink_to_fit();
        }
        const char* object = i % 2 ? R"({"superClass": "0x50", "class": ["0x2013", "0x0"]})"
                                   : R"({"class": ["0x876234", "0x0"]})";
        text[static_cast<std::size_t>(i)] =
            fmt::format(R"({{"name": "h{0}", "localTM": [[1, 0, 0], [0, 1, 0], [0, 0, 1], [{1}, 0.5, -2]],)"
                        R"( "userProps": "weight = {0}.5", "object": {2}, "children": [{3}]}})",
                        i, i % 7, object, kids);
    }
    return R"({"filePath": "/scenes/bench.max", "nodes": [)" + text[0] + "]}";
}

void BM_ExportHelperTree(benchmark::State& state) {
    const std::string document = helperTree(static_cast<int>(state.range(0)));
    nqvfs::mountNative("/");
    userSettings() = UserSettings();
    userSettings().setShowExportStat(false);
    const std::string target =
        (std::filesystem::temp_directory_path() / fmt::format("export_bench_{}.nqf", ::getpid())).string();
    std::ostringstream messages;
    for (auto _ : state) {
        auto scene = scene::parseScene(document);
        scene::HeadlessInterface::Options options;
        options.err = &messages;
        options.terminal = false;
        options.plugCfgDir = NQ_BINARY_DIR;
        scene::HeadlessInterface host(*scene, options);
        exporter::NQModelExporter exporter;
        if (exporter.DoExport(target.c_str(), nullptr, &host) != 1 || !std::filesystem::exists(target)) {
            state.SkipWithError("the export failed");
            break;
        }
    }
    std::filesystem::remove(target);
    state.counters["nodes"] = static_cast<double>(state.range(0));
    state.counters["docMB"] = static_cast<double>(document.size()) / 1e6;
}

BENCHMARK(BM_ExportHelperTree)->Arg(25000)->Arg(100000)->Arg(400000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
