// The optimiser over the link index against the same passes over the straightforward link
// questions, on seeded random models: the trees, the users' links, what was baked and the
// counts of every pass must come out the same.

#include <gtest/gtest.h>

#include <random>

#include "OptimizerModels.h"
#include "model/ArgAnimatedBone.h"
#include "model/ArgVisibilityNode.h"
#include "model/LightNode.h"
#include "model/utils/LinkIndex.h"
#include "model/utils/Optimizers.h"

namespace {

using namespace optimizer_test;
using model::utils::OptimizerRound;

class RandomModel {
public:
    explicit RandomModel(std::uint32_t seed) : rng_(seed) {}

    Model build() {
        Model m;
        std::size_t count = 2 + pick(70);
        nodes_.clear();
        nodes_.push_back(m.add(nullptr, chance(75) ? "model::Node" : rootClass(), "n0"));
        dress(nodes_.back());
        for (std::size_t i = 1; i < count; ++i) {
            // Parents among the recent nodes make deeper trees than a uniform pick.
            std::size_t window = std::min<std::size_t>(nodes_.size(), 8);
            const Ptr<Node>& parent =
                chance(60) ? nodes_[nodes_.size() - 1 - pick(window)] : nodes_[pick(nodes_.size())];
            nodes_.push_back(m.add(parent, nodeClass(), "n" + std::to_string(i)));
            dress(nodes_.back());
        }
        std::size_t users = pick(count + 4);
        for (std::size_t i = 0; i < users; ++i) {
            int kind = static_cast<int>(pick(10));
            if (kind == 0) {
                auto c = createNodeAs<Connector>("model::Connector");
                c->controlNode = anyNode();
                m.root->addConnector(c);
            } else if (kind == 1) {
                auto l = createNodeAs<LightNode>("model::LightNode");
                l->controlNode = anyNode();
                m.root->addLightNode(l);
            } else {
                Ptr<TestUser> u = m.user();
                std::size_t links = 1 + pick(3);
                for (std::size_t k = 0; k < links; ++k) {
                    u->addLink(anyNode(), chance(85));
                }
            }
        }
        return m;
    }

private:
    std::size_t pick(std::size_t n) { return n == 0 ? 0 : rng_() % n; }
    bool chance(int percent) { return static_cast<int>(pick(100)) < percent; }
    const Ptr<Node>& anyNode() { return nodes_[pick(nodes_.size())]; }

    const char* rootClass() {
        static const char* kClasses[] = {"model::TransformNode", "model::ArgAnimationNode", "model::LodNode",
                                         "model::ArgVisibilityNode"};
        return kClasses[pick(4)];
    }
    const char* nodeClass() {
        static const std::pair<const char*, int> kWeights[] = {
            {"model::Node", 25},
            {"model::TransformNode", 30},
            {"model::ArgVisibilityNode", 8},
            {"model::ArgAnimationNode", 16},
            {"model::ArgAnimatedBone", 4},
            {"model::Bone", 5},
            {"model::BillboardNode", 3},
            {"model::LodNode", 5},
            {"model::TmpNumberRoot", 4},
        };
        int r = static_cast<int>(pick(100));
        for (const auto& [name, weight] : kWeights) {
            if (r < weight) {
                return name;
            }
            r -= weight;
        }
        return "model::Node";
    }
    double small() { return static_cast<double>(pick(7)) - 3.0; }
    nq::Matrixd matrix() {
        if (chance(25)) {
            return nq::Matrixd::identity();
        }
        nq::Matrixd m = nq::scaleMatrix(nq::Vec3d{{chance(80) ? 1.0 : 2.0, 1.0, chance(90) ? 1.0 : -1.0}});
        return m * nq::translateMatrix(nq::Vec3d{{small(), small(), small()}});
    }
    void dress(const Ptr<Node>& node) {
        if (auto* t = dynamic_cast<TransformNode*>(node.get())) {
            t->matrix = matrix();
        }
        if (auto* a = dynamic_cast<ArgAnimationNode*>(node.get())) {
            if (chance(50)) {
                a->basePosition = nq::Vec3d{{small(), 0, small()}};
            }
            if (chance(30)) {
                a->baseRotationA = nq::Quatd{{0, 0, std::sqrt(0.5), std::sqrt(0.5)}};
            }
            if (chance(45)) {
                a->positionChannels.push_back(PositionChannel{1, {PositionKey{0, {}}}});
            } else if (chance(30)) {
                a->rotationChannels.push_back(RotationChannel{2, {}});
            }
        }
        if (auto* b = dynamic_cast<IBone*>(node.get())) {
            b->boneMatrix = matrix();
        }
        if (auto* v = dynamic_cast<ArgVisibilityNode*>(node.get())) {
            if (chance(50)) {
                v->entries.push_back(
                    VisibilityEntry{3, chance(50) ? std::vector<std::pair<double, double>>{}
                                                  : std::vector<std::pair<double, double>>{{0, 1}}});
            }
        }
    }

    std::mt19937 rng_;
    std::vector<Ptr<Node>> nodes_;
};

TEST(OptimizersDifferential, IndexedLinksGiveTheSameModelAsTheStraightforwardOnes) {
    OptimizerRound total;
    for (std::uint32_t seed = 1; seed <= 400; ++seed) {
        Model plain = RandomModel(seed).build();
        Model indexed = RandomModel(seed).build();
        ASSERT_EQ(describe(*plain.root), describe(*indexed.root)) << "seed " << seed;

        auto expected = model::utils::optimizeTransformations(*plain.root, straightforwardLinks(*plain.root));
        model::utils::LinkIndex links(*indexed.root);
        model::utils::NodeHelpers helpers;
        links.fill(helpers);
        auto actual = model::utils::optimizeTransformations(*indexed.root, std::move(helpers));

        ASSERT_EQ(expected, actual) << "seed " << seed;
        ASSERT_EQ(describe(*plain.root), describe(*indexed.root)) << "seed " << seed;
        for (const OptimizerRound& r : expected) {
            total.emptyNodes += r.emptyNodes;
            total.dummyNodes += r.dummyNodes;
            total.deadEnds += r.deadEnds;
            total.transforms += r.transforms;
            total.moreDeadEnds += r.moreDeadEnds;
        }
    }
    // The random models exercise every pass, the repeated dead-end removal included.
    EXPECT_GT(total.emptyNodes, 100u);
    EXPECT_GT(total.dummyNodes, 100u);
    EXPECT_GT(total.deadEnds, 100u);
    EXPECT_GT(total.transforms, 100u);
    EXPECT_GT(total.moreDeadEnds, 10u);
}

// The index answers as the root does after any mix of replaceLinks through it and setLink on
// links it handed out.
TEST(OptimizersDifferential, LinkIndexFollowsReplacementsAndHandedOutLinks) {
    std::mt19937 rng(7);
    auto pick = [&](std::size_t n) { return rng() % n; };
    Model m;
    std::vector<Ptr<Node>> nodes;
    for (int i = 0; i < 12; ++i) {
        nodes.push_back(createNode("n" + std::to_string(i)));
    }
    for (int i = 0; i < 30; ++i) {
        if (i % 7 == 0) {
            auto c = createNodeAs<Connector>("model::Connector");
            c->controlNode = nodes[pick(nodes.size())];
            m.root->addConnector(c);
            continue;
        }
        Ptr<TestUser> u = m.user();
        for (std::size_t k = 0, n = 1 + pick(4); k < n; ++k) {
            u->addLink(nodes[pick(nodes.size())], true);
        }
    }
    model::utils::LinkIndex index(*m.root);

    auto sameLinks = [](const std::vector<NodeLink>& a, const std::vector<NodeLink>& b) {
        if (a.size() != b.size()) {
            return false;
        }
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (a[i].link != b[i].link || a[i].user != b[i].user) {
                return false;
            }
        }
        return true;
    };
    for (int step = 0; step < 500; ++step) {
        const Ptr<Node>& a = nodes[pick(nodes.size())];
        const Ptr<Node>& b = nodes[pick(nodes.size())];
        if (pick(3) == 0) {
            bool wasLinked = m.root->isLinked(a.get());
            ASSERT_EQ(index.replaceLinks(a.get(), b), wasLinked) << step;
        } else {
            std::vector<NodeLink> got = index.linksOf(a.get());
            ASSERT_TRUE(sameLinks(got, m.root->linksOf(a.get()))) << step;
            for (const NodeLink& l : got) {
                if (pick(2) == 0) {
                    l.user->setLink(l.link, b);
                }
            }
        }
        for (const Ptr<Node>& n : nodes) {
            ASSERT_EQ(index.isLinked(n.get()), m.root->isLinked(n.get())) << step;
        }
    }
}

}  // namespace
