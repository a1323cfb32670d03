// Creating and freeing n registry objects (a property class): the registry's live list must keep
// the whole cycle near-linear in n.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "model/Property.h"
#include "model/PropertyCreators.h"

namespace {

using model::FloatProperty;
using model::Ptr;

std::vector<Ptr<FloatProperty>> createMany(std::size_t n) {
    std::vector<Ptr<FloatProperty>> objects;
    objects.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        objects.push_back(model::createFloatProperty("p", static_cast<float>(i)));
    }
    return objects;
}

// Objects are freed in the order they were made: the worst case for a list searched from the front.
void BM_CreateAndFreeInOrder(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        std::vector<Ptr<FloatProperty>> objects = createMany(n);
        for (auto& p : objects) {
            p.reset();
        }
        benchmark::DoNotOptimize(objects.data());
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
}

// Objects are freed in a random order, as a model's tree and lists let go of them.
void BM_CreateAndFreeShuffled(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::mt19937 random(42);
    for (auto _ : state) {
        std::vector<Ptr<FloatProperty>> objects = createMany(n);
        state.PauseTiming();
        std::shuffle(objects.begin(), objects.end(), random);
        state.ResumeTiming();
        objects.clear();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
}

// The same shuffled cycle without the registry: objects made with new, so the difference to the
// case above is what the registry adds, and the growth here is what memory itself costs.
void BM_DirectShuffled(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::mt19937 random(42);
    for (auto _ : state) {
        std::vector<Ptr<FloatProperty>> objects;
        objects.reserve(n);
        for (std::size_t i = 0; i < n; ++i) {
            objects.emplace_back(new FloatProperty("p", static_cast<float>(i)));
        }
        state.PauseTiming();
        std::shuffle(objects.begin(), objects.end(), random);
        state.ResumeTiming();
        objects.clear();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
}

BENCHMARK(BM_CreateAndFreeInOrder)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CreateAndFreeShuffled)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DirectShuffled)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
