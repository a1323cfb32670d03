// Evaluating user-defined text: 10^4 node texts of five keys each, as an artist writes them,
// through the parser and the three handlers of a node. Reports texts per second.

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include <fmt/format.h>

#include "model/PropertyList.h"
#include "usertext/AnimatedPropertiesHandler.h"
#include "usertext/ArrayHandler.h"
#include "usertext/ParamsLuaWrapper.h"
#include "usertext/ParseUserText.h"
#include "usertext/PropertiesHandler.h"

namespace {

constexpr int kTexts = 10'000;

std::vector<std::string> nodeTexts() {
    std::vector<std::string> texts;
    texts.reserve(kTexts);
    for (int i = 0; i < kTexts; ++i) {
        texts.push_back(
            fmt::format("TYPE = \"RENDER|LOD\";\r\n"
                        "SMOOTH_NORMALS = true;\r\n"
                        "glow = vec4(1, 0.5, {}, 1);\r\n"
                        "blink = animation({}, 0.0, 0.0, 1.0, 1.0);\r\n"
                        "offset = {};\r\n",
                        (i % 100) / 100.0, i % 16, i * 0.125));
    }
    return texts;
}

void BM_NodeTexts(benchmark::State& state) {
    lu::setPluginConfigDir(NQ_BINARY_DIR);
    const std::vector<std::string> texts = nodeTexts();
    model::PropertyList properties;
    lu::FloatArrays arrays;
    const lu::FuncHandlers handlers{lu::FuncHandlerPtr(new lu::PropertiesHandler(properties)),
                                    lu::FuncHandlerPtr(new lu::AnimatedPropertiesHandler(properties)),
                                    lu::FuncHandlerPtr(new lu::ArrayHandler(arrays))};
    for (auto _ : state) {
        for (const std::string& text : texts) {
            properties.clear();
            lu::parseUserText(text, handlers);
            benchmark::DoNotOptimize(properties.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * kTexts);
}
BENCHMARK(BM_NodeTexts)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
