// The tree optimisers on synthetic models of n tree nodes with about n/2 render nodes and a few
// connectors. A model's depth stays below a fixed bound, as exported scenes' hierarchies do, so
// the number of rounds does not grow with n and the whole run should grow near-linearly.

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "model/ArgAnimationNode.h"
#include "model/ArgVisibilityNode.h"
#include "model/Bone.h"
#include "model/NodeCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/utils/LinkIndex.h"
#include "model/utils/Optimizers.h"

namespace {

using namespace model;

constexpr int kMaxDepth = 10;

struct Synthetic {
    std::mt19937 rng;
    std::vector<Ptr<Node>> nodes;
    std::vector<int> depth;

    explicit Synthetic(std::uint32_t seed) : rng(seed) {}

    std::size_t pick(std::size_t n) { return rng() % n; }

    Ptr<Node> makeNode() {
        std::size_t r = pick(100);
        if (r < 30) {
            return createNode("helper");
        }
        if (r < 60) {
            return createTransformNode("xform", nq::translateMatrix(nq::Vec3d{{1.0 + pick(5), 2, 3}}));
        }
        if (r < 70) {
            return createTransformNode("frozen", nq::Matrixd::identity());
        }
        if (r < 82) {
            auto a = createNodeAs<ArgAnimationNode>("model::ArgAnimationNode");
            a->name = "anim";
            a->basePosition = nq::Vec3d{{0, 1, 0}};
            if (r < 78) {
                a->positionChannels.push_back(PositionChannel{static_cast<std::uint32_t>(pick(8)),
                                                              {PositionKey{0, {}}, PositionKey{1, {}}}});
            }
            return a;
        }
        if (r < 90) {
            auto v = createNodeAs<ArgVisibilityNode>("model::ArgVisibilityNode");
            v->name = "gate";
            v->entries.push_back(VisibilityEntry{3, {{0.0, 0.5}}});
            return v;
        }
        if (r < 97) {
            auto b = createNodeAs<Bone>("model::Bone");
            b->name = "bone";
            return b;
        }
        auto lod = createNodeAs<Node>("model::LodNode");
        lod->name = "lod";
        return lod;
    }

    Ptr<RenderNode> triangle(const Ptr<Node>& on) {
        Ptr<RenderNode> r = createNodeAs<RenderNode>("model::RenderNode");
        r->links = {RenderLink{on}};
        r->vertices.setAttribute(POSITION0, 3, {0, 0, 0, 1, 0, 0, 0, 1, 0});
        r->indices = Indices(kTriangleList, {0, 1, 2});
        return r;
    }

    Ptr<RootNode> build(std::size_t n) {
        Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
        nodes.assign(1, createNode("scene"));
        depth.assign(1, 0);
        root->setRootNode(nodes[0]);
        while (nodes.size() < n) {
            // A parent near the recent nodes, as a scene's hierarchy is listed, within the depth bound.
            std::size_t window = std::min<std::size_t>(nodes.size(), 32);
            std::size_t p = nodes.size() - 1 - pick(window);
            while (depth[p] >= kMaxDepth) {
                p = pick(nodes.size());
            }
            Ptr<Node> node = makeNode();
            nodes[p]->append(node);
            nodes.push_back(node);
            depth.push_back(depth[p] + 1);
        }
        for (std::size_t i = 0; i < n / 2; ++i) {
            root->addRenderNode(triangle(nodes[pick(nodes.size())]));
        }
        for (std::size_t i = 0; i < n / 50; ++i) {
            auto c = createNodeAs<Connector>("model::Connector");
            c->controlNode = nodes[pick(nodes.size())];
            root->addConnector(c);
        }
        nodes.clear();
        return root;
    }
};

// The link questions answered by walking every user on each call, for comparison.
std::vector<utils::OptimizerRound> straightforward(RootNode& root) {
    utils::NodeHelpers h;
    h.replaceLinks = [&root](const Ptr<Node>& o, const Ptr<Node>& n) {
        return root.replaceLinks(o.get(), n);
    };
    h.isLinked = [&root](const Ptr<Node>& n) { return root.isLinked(n.get()); };
    h.linksOf = [&root](const Ptr<Node>& n) { return root.linksOf(n.get()); };
    return utils::optimizeTransformations(root, std::move(h));
}

// What model::optimizeTransformations does, with the rounds kept for the report.
std::vector<utils::OptimizerRound> indexed(RootNode& root) {
    utils::LinkIndex links(root);
    utils::NodeHelpers h;
    links.fill(h);
    return utils::optimizeTransformations(root, std::move(h));
}

template <bool kIndexed>
void BM_OptimizeTransformations(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::size_t rounds = 0;
    std::size_t left = 0;
    for (auto _ : state) {
        state.PauseTiming();
        // The same model every time, so that both ways can be compared by their counters.
        Ptr<RootNode> root = Synthetic(42).build(n);
        state.ResumeTiming();
        rounds = (kIndexed ? indexed(*root) : straightforward(*root)).size();
        state.PauseTiming();
        left = 0;
        root->rootNode()->visit([&left](const Ptr<Node>&) { return ++left != 0; });
        root.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
    state.counters["rounds"] = static_cast<double>(rounds);
    state.counters["nodes_left"] = static_cast<double>(left);
}

// One pre-order walk over the same trees: what memory alone costs per node as n grows.
void BM_WalkOnly(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    Synthetic synthetic(42);
    Ptr<RootNode> root = synthetic.build(n);
    for (auto _ : state) {
        std::size_t count = 0;
        root->rootNode()->visit([&count](const Ptr<Node>&) { return ++count != 0; });
        benchmark::DoNotOptimize(count);
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * n));
}

void BM_Indexed(benchmark::State& state) {
    BM_OptimizeTransformations<true>(state);
}
void BM_Straightforward(benchmark::State& state) {
    BM_OptimizeTransformations<false>(state);
}

}  // namespace

BENCHMARK(BM_Indexed)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_WalkOnly)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Straightforward)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
