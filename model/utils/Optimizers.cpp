#include "model/utils/Optimizers.h"

#include "model/NodeCreators.h"
#include "model/TransformNode.h"
#include "model/utils/LinkIndex.h"
#include "model/utils/TreeEdits.h"

namespace model::utils {

namespace {

// Bakes T's matrix into every user that hangs on T. Each user that takes it moves to a new plain
// node N put in T's place above T, so it no longer sits under the matrix. Adds the number of
// baked links to count. True if every link was baked, or there were none.
bool bakeIntoUsers(const Ptr<TransformNode>& t, const NodeHelpers& helpers, std::uint64_t& count) {
    std::vector<NodeLink> links = helpers.linksOf(t);
    Ptr<Node> above;
    std::uint64_t baked = 0;
    for (const NodeLink& l : links) {
        if (!l.user->applyTransform(l.link, t->matrix)) {
            continue;
        }
        if (!above) {
            above = createNode("");
            t->parent()->insert(t, above);
            above->append(t);
        }
        l.user->setLink(l.link, above);
        ++baked;
    }
    count += baked;
    return baked == links.size();
}

// Moves child c of T up beside T, under T's parent, so that it no longer sits under T's matrix
// M: a node with a matrix of its own takes M into it; a node without one gets a copy of T as its
// only child, holding its users and children. False if c blocks the move.
bool pushPastChild(const Ptr<TransformNode>& t, const Ptr<Node>& c, const NodeHelpers& helpers) {
    Ptr<Node> parent = t->parent();
    switch (c->transformPolicy()) {
        case TransformPolicy::Block:
            return false;
        case TransformPolicy::Absorb:
            c->absorbTransform(t->matrix);
            parent->insert(t, c);
            return true;
        case TransformPolicy::PassThrough:
            break;
    }
    Ptr<Node> copy = createTransformNode(t->name, t->matrix);
    helpers.replaceLinks(c, copy);
    moveChildrenTo(c, copy);
    c->append(copy);
    parent->insert(t, c);
    return true;
}

// Slides each static transform one level down the tree, baking it into its users on the way.
// A transform without a parent, or one under a node whose children are fixed, ends the pass at
// once with 0, even after others were moved: such a run is not counted as a change.
std::uint64_t moveTransforms(const Ptr<Node>& root, const NodeHelpers& helpers) {
    std::vector<Ptr<Node>> transforms =
        collectNodes(root, [](const Node& node) { return node.nodeType() == NodeType::TransformNode; });
    std::uint64_t count = 0;
    for (const Ptr<Node>& node : transforms) {
        Ptr<TransformNode> t(static_cast<TransformNode*>(node.get()));
        if (!hasLooseParent(*t)) {
            return 0;
        }
        if (!bakeIntoUsers(t, helpers, count)) {
            continue;
        }
        for (const Ptr<Node>& child : t->children()) {
            if (pushPastChild(t, child, helpers)) {
                ++count;
            }
        }
    }
    return count;
}

}  // namespace

std::vector<OptimizerRound> optimizeTransformations(RootNode& model, NodeHelpers helpers) {
    std::vector<Ptr<Node>> deleted;
    helpers.deleteNode = [&deleted](const Ptr<Node>& node) {
        node->detach();
        deleted.push_back(node);
    };
    helpers.setRoot = [&model](const Ptr<Node>& node) { model.setRootNode(node); };

    std::vector<OptimizerRound> rounds;
    if (!model.rootNode()) {
        return rounds;
    }
    OptimizerRound round;
    do {
        round = OptimizerRound{};
        round.emptyNodes = replaceEmptyNodes(model.rootNode(), helpers);
        round.dummyNodes = removeDummyNodes(model.rootNode(), helpers);
        round.deadEnds = removeDeadEnds(model.rootNode(), helpers);
        round.transforms = moveTransforms(model.rootNode(), helpers);
        if (round.deadEnds != 0) {
            while (std::uint64_t removed = removeDeadEnds(model.rootNode(), helpers)) {
                round.moreDeadEnds += removed;
            }
        }
        // A plain root with one child and nothing on it gives way to the child.
        Ptr<Node> top = model.rootNode();
        if (top->nodeType() == NodeType::Node && top->firstChild() && top->firstChild() == top->lastChild() &&
            !helpers.isLinked(top)) {
            Ptr<Node> child = top->firstChild();
            child->detach();
            helpers.deleteNode(top);
            helpers.setRoot(child);
        }
        rounds.push_back(round);
    } while (round != OptimizerRound{});

    for (const Ptr<Node>& node : deleted) {
        node->name = "_DELETED_";
    }
    return rounds;
}

}  // namespace model::utils

namespace model {

void optimizeTransformations(RootNode* root) {
    if (!root) {
        return;
    }
    utils::LinkIndex links(*root);
    utils::NodeHelpers helpers;
    links.fill(helpers);
    utils::optimizeTransformations(*root, std::move(helpers));
}

}  // namespace model
