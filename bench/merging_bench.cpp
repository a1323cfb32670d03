// The render-node passes on large models: merging 10^3 to 10^5 render nodes, welding and removing
// duplicates in meshes of 10^6 vertices, and all passes on 10^5 nodes of 10 vertices each. The
// straightforward grouping of the tests runs beside the indexed one on the smaller models.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "model/ArgVisibilityNode.h"
#include "model/LodNode.h"
#include "model/NodeCreators.h"
#include "model/PropertiesSet.h"
#include "model/PropertyCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/utils/MergeRenderNodes.h"
#include "model/utils/RemapDuplicates.h"
#include "model/utils/RenderNodePasses.h"
#include "model/utils/WeldVertices.h"
#include "utils/ReferenceMerging.h"

namespace {

using namespace model;

// Random positions on a coarse grid, so that about a third of the vertices lie within the welding
// tolerance of another one and some are byte-equal. In random order, or sorted as a mesh's
// vertices mostly are, neighbours near each other.
Vertices gridVertices(std::size_t count, std::mt19937& random, bool sorted = false) {
    std::uniform_int_distribution<int> cell(0, 99);
    std::uniform_int_distribution<int> jitter(0, 2);
    std::vector<std::array<float, 3>> points(count);
    for (auto& p : points) {
        for (float& c : p) {
            c = static_cast<float>(cell(random)) + 4e-6f * static_cast<float>(jitter(random));
        }
    }
    if (sorted) {
        std::sort(points.begin(), points.end());
    }
    std::vector<float> positions;
    std::vector<float> normals;
    positions.reserve(count * 4);
    normals.reserve(count * 3);
    for (const auto& p : points) {
        positions.insert(positions.end(), {p[0], p[1], p[2], 0.0f});
        normals.insert(normals.end(), {0.0f, 1.0f, 0.0f});
    }
    Vertices v;
    v.setAttribute(POSITION0, 4, std::move(positions));
    v.setAttribute(NORMAL0, 3, std::move(normals));
    return v;
}

Indices triangles(std::size_t vertices, std::size_t count, std::mt19937& random) {
    std::uniform_int_distribution<std::uint32_t> pick(0, static_cast<std::uint32_t>(vertices - 1));
    std::vector<std::uint32_t> indices(count * 3);
    for (std::uint32_t& i : indices) {
        i = pick(random);
    }
    return Indices(kTriangleList, std::move(indices));
}

// A model with n render nodes of the given vertex count under n / 20 tree nodes, a tenth of them
// visibility nodes and a tenth levels of detail with three children; 64 materials, each also in an
// equal copy; a few kinds of user properties.
Ptr<RootNode> makeModel(std::size_t n, std::size_t verticesPerNode, std::uint32_t seed) {
    std::mt19937 random(seed);
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    Ptr<Node> top = createNode("top");
    root->setRootNode(top);
    std::vector<Ptr<Node>> parents{top};
    for (std::size_t i = 0; i < n / 20 + 1; ++i) {
        Ptr<Node> holder;
        if (i % 10 == 3) {
            holder = createNodeAs<ArgVisibilityNode>("model::ArgVisibilityNode");
        } else if (i % 10 == 7) {
            holder = createNodeAs<LodNode>("model::LodNode");
            for (int level = 0; level < 3; ++level) {
                Ptr<Node> child = createNode("level");
                holder->append(child);
                parents.push_back(child);
            }
        } else {
            holder = createNode("part");
        }
        top->append(holder);
        parents.push_back(holder);
    }
    std::vector<MaterialPtr> materials;
    for (int i = 0; i < 64; ++i) {
        nq::Ptr<PropertiesSet> m(new PropertiesSet());
        m->name = "material" + std::to_string(i);
        m->vertexFormat[POSITION0] = 4;
        m->vertexFormat[NORMAL0] = 3;
        materials.push_back(m);
        materials.push_back(MaterialPtr(new PropertiesSet(*m)));
    }
    std::uniform_int_distribution<std::size_t> parent(0, parents.size() - 1);
    std::uniform_int_distribution<std::size_t> material(0, materials.size() - 1);
    std::uniform_int_distribution<int> properties(0, 3);
    for (std::size_t i = 0; i < n; ++i) {
        Ptr<RenderNode> node = createNodeAs<RenderNode>("model::RenderNode");
        node->links.push_back(RenderLink{parents[parent(random)]});
        node->material = materials[material(random)];
        int p = properties(random);
        if (p == 1) {
            node->properties.push_back(createFloatProperty("depth", 1.0f));
        } else if (p == 2) {
            node->properties.push_back(createProperty<StringProperty>("layer", "top"));
        }
        node->vertices = gridVertices(verticesPerNode, random);
        node->indices = triangles(verticesPerNode, verticesPerNode, random);
        root->addRenderNode(node);
    }
    return root;
}

// Runs a pass over a fresh model of range(0) render nodes in each iteration; the model is made and
// freed outside the timing.
template <class Pass>
void modelBenchmark(benchmark::State& state, std::size_t verticesPerNode, std::uint32_t seed, Pass pass) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::size_t left = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Ptr<RootNode> root = makeModel(n, verticesPerNode, seed);
        state.ResumeTiming();
        pass(*root);
        left = root->renderNodes().size();
        state.PauseTiming();
        root.reset();
        state.ResumeTiming();
    }
    state.counters["nodesLeft"] = static_cast<double>(left);
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
}

template <class Merge>
void mergeBenchmark(benchmark::State& state, Merge merge) {
    modelBenchmark(state, 3, 7, merge);
}

void BM_MergeRenderNodes(benchmark::State& state) {
    mergeBenchmark(state, [](RootNode& root) { model::utils::mergeRenderNodes(root); });
}
BENCHMARK(BM_MergeRenderNodes)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);

void BM_MergeRenderNodesStraightforward(benchmark::State& state) {
    mergeBenchmark(state, [](RootNode& root) { reference::mergeRenderNodes(root); });
}
BENCHMARK(BM_MergeRenderNodesStraightforward)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

template <class Pass>
void meshBenchmark(benchmark::State& state, Pass pass, bool sorted = false) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::mt19937 random(11);
    const Vertices vertices = gridVertices(n, random, sorted);
    const Indices indices = triangles(n, n, random);
    std::uint32_t removed = 0;
    for (auto _ : state) {
        state.PauseTiming();
        Vertices v = vertices;
        Indices i = indices;
        state.ResumeTiming();
        removed = pass(v, i);
    }
    state.counters["removed"] = removed;
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
}

void BM_WeldVertices(benchmark::State& state) {
    meshBenchmark(state, [](Vertices& v, Indices& i) {
        return model::utils::weldVertices(v, i, model::utils::kWeldTolerance);
    });
}
BENCHMARK(BM_WeldVertices)->Arg(10000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_WeldVerticesSorted(benchmark::State& state) {
    meshBenchmark(
        state,
        [](Vertices& v, Indices& i) {
            return model::utils::weldVertices(v, i, model::utils::kWeldTolerance);
        },
        true);
}
BENCHMARK(BM_WeldVerticesSorted)->Arg(1000000)->Unit(benchmark::kMillisecond);

void BM_WeldVerticesStraightforward(benchmark::State& state) {
    meshBenchmark(state, [](Vertices& v, Indices& i) {
        return reference::weldVertices(v, i, model::utils::kWeldTolerance);
    });
}
BENCHMARK(BM_WeldVerticesStraightforward)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_RemapDuplicateVertices(benchmark::State& state) {
    meshBenchmark(state, [](Vertices& v, Indices& i) { return model::utils::remapDuplicateVertices(v, i); });
}
BENCHMARK(BM_RemapDuplicateVertices)->Arg(1000000)->Unit(benchmark::kMillisecond);

// All passes on 10^5 render nodes of 10 vertices each: 10^6 vertices.
void BM_RenderNodePasses(benchmark::State& state) {
    modelBenchmark(state, 10, 5, [](RootNode& root) { model::utils::runRenderNodePasses(root); });
}
BENCHMARK(BM_RenderNodePasses)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
