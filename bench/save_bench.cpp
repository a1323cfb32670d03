// Saving a large model and reading it back, against writing the same number of bytes with fwrite.
// BM_Save assembles the file in memory; BM_SaveToFile is the whole save to a file, as an export
// does it (records, then the pieces written into a temporary file, flushed and renamed);
// BM_WriteFile is that file system part alone, with the bytes already made; BM_FwriteSynced is one
// fwrite of the same bytes, flushed to the disk like the save's file.
//
// The model: n tree nodes, each with its own name and a property of its own name (so about 2n
// distinct strings), and one render node holding 100n vertex floats. n = 10^5 gives 10^5 nodes,
// 10^5 distinct property names and 10^7 floats.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "core/Vfs.h"
#include "model/NodeCreators.h"
#include "model/PropertiesSet.h"
#include "model/PropertyCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/io/ClassWriter10.h"
#include "model/io/NqfReader.h"

namespace {

model::Ptr<model::RootNode> makeModel(std::size_t n) {
    auto root = model::createNodeAs<model::RootNode>("model::RootNode");
    std::vector<model::Ptr<model::Node>> nodes;
    nodes.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        auto node = model::createNode("node" + std::to_string(i));
        node->properties.push_back(model::createFloatProperty("p" + std::to_string(i), float(i)));
        if (i == 0) {
            root->setRootNode(node);
        } else {
            nodes[(i - 1) / 8]->insert(nullptr, node);  // eight children each: a shallow tree
        }
        nodes.push_back(node);
    }
    auto render = model::createNodeAs<model::RenderNode>("model::RenderNode");
    render->links.push_back(model::RenderLink{nodes.back(), 0xFFFFFFFFu});
    render->material = model::MaterialPtr(new model::PropertiesSet());
    std::vector<float> positions(100 * n / 3 * 3);
    for (std::size_t i = 0; i < positions.size(); ++i) {
        positions[i] = float(i % 1000);
    }
    render->vertices.setAttribute(model::POSITION0, 3, std::move(positions));
    root->addRenderNode(render);
    return root;
}

void BM_Save(benchmark::State& state) {
    auto root = makeModel(static_cast<std::size_t>(state.range(0)));
    std::size_t size = 0;
    for (auto _ : state) {
        std::vector<unsigned char> out;
        model::createClassWriter(10)->save(*root, out);
        size = out.size();
        benchmark::DoNotOptimize(out.data());
    }
    state.counters["bytes"] = double(size);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
}

// One fwrite of the model's bytes into /tmp; `synced` flushes the file to the disk before the
// close.
void fwriteModel(benchmark::State& state, bool synced) {
    auto root = makeModel(static_cast<std::size_t>(state.range(0)));
    std::vector<unsigned char> out;
    model::createClassWriter(10)->save(*root, out);
    std::string path = "/tmp/nqf_save_bench.bin";
    for (auto _ : state) {
        std::FILE* f = std::fopen(path.c_str(), "wb");
        std::fwrite(out.data(), 1, out.size(), f);
        if (synced) {
            std::fflush(f);
            ::fsync(::fileno(f));
        }
        std::fclose(f);
    }
    std::remove(path.c_str());
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * out.size()));
}

void BM_Fwrite(benchmark::State& state) {
    fwriteModel(state, false);
}

// The yardstick of the save to a file: the same bytes into the same directory, made durable the
// way the save makes its file durable. Without the flush the save would be charged for work the
// yardstick skips.
void BM_FwriteSynced(benchmark::State& state) {
    fwriteModel(state, true);
}

// The directory of the files written through the virtual file system.
constexpr const char* kMount = "/nqfbench";

void BM_SaveToFile(benchmark::State& state) {
    auto root = makeModel(static_cast<std::size_t>(state.range(0)));
    nqvfs::mountNative(kMount, "/tmp");
    const std::string path = std::string(kMount) + "/nqf_save_bench.nqf";
    for (auto _ : state) {
        root->save(path, 10);
    }
    nqvfs::unmount(kMount);
    std::remove("/tmp/nqf_save_bench.nqf");
}

void BM_WriteFile(benchmark::State& state) {
    auto root = makeModel(static_cast<std::size_t>(state.range(0)));
    std::vector<unsigned char> out;
    model::createClassWriter(10)->save(*root, out);
    nqvfs::mountNative(kMount, "/tmp");
    const std::string path = std::string(kMount) + "/nqf_save_bench.nqf";
    for (auto _ : state) {
        if (!nqvfs::writeFile(path, out.data(), out.size())) {
            state.SkipWithError("the file could not be written");
        }
    }
    nqvfs::unmount(kMount);
    std::remove("/tmp/nqf_save_bench.nqf");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * out.size()));
}

void BM_Read(benchmark::State& state) {
    auto root = makeModel(static_cast<std::size_t>(state.range(0)));
    std::vector<unsigned char> out;
    model::createClassWriter(10)->save(*root, out);
    for (auto _ : state) {
        auto doc = model::io::readNqf(out);
        benchmark::DoNotOptimize(doc.tree.size());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * out.size()));
}

}  // namespace

BENCHMARK(BM_Save)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SaveToFile)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WriteFile)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Fwrite)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FwriteSynced)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Read)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_MAIN();
