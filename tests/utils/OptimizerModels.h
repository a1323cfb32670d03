#pragma once
// Models for the optimiser tests: a root with a tree, users whose baking can be made to fail per
// link, the straightforward link questions over the root's own lists, and a text picture of a
// model to compare two runs by.

#include <cstdint>
#include <string>
#include <vector>

#include "model/BaseRenderNode.h"
#include "model/NodeCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/utils/NodeHelpers.h"

namespace optimizer_test {

using namespace model;

// A render-list user with any number of links. Baking succeeds on the links marked bakeable and
// multiplies the matrix into that link's record of what it took.
class TestUser : public BaseRenderNode {
public:
    NodeType nodeType() const override { return NodeType::RenderNode; }
    void accept(INodeVisitor&) override {}
    void accept(INodeVisitor&) const override {}

    std::uint32_t linkCount() const override { return static_cast<std::uint32_t>(links.size()); }
    Ptr<Node> link(std::uint32_t i) const override { return links.at(i); }
    void setLink(std::uint32_t i, Ptr<Node> node) override { links.at(i) = std::move(node); }
    bool applyTransform(std::uint32_t i, const nq::Matrixd& m) override {
        if (!bakeable.at(i)) {
            return false;
        }
        baked.at(i) = baked.at(i) * m;
        return true;
    }

    void addLink(Ptr<Node> node, bool canBake) {
        links.push_back(std::move(node));
        bakeable.push_back(canBake);
        baked.emplace_back();
    }

    std::vector<Ptr<Node>> links;
    std::vector<bool> bakeable;
    std::vector<nq::Matrixd> baked;
};

struct Model {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");

    Ptr<Node> top() const { return root->rootNode(); }
    template <class T = Node>
    Ptr<T> add(const Ptr<Node>& parent, const char* className, const std::string& name) {
        Ptr<T> node = createNodeAs<T>(className);
        node->name = name;
        if (parent) {
            parent->append(node);
        } else {
            root->setRootNode(node);
        }
        return node;
    }
    Ptr<Node> plain(const Ptr<Node>& parent, const std::string& name) {
        return add(parent, "model::Node", name);
    }
    Ptr<TransformNode> transform(const Ptr<Node>& parent, const std::string& name, const nq::Matrixd& m) {
        auto t = add<TransformNode>(parent, "model::TransformNode", name);
        t->matrix = m;
        return t;
    }
    // A render node with one triangle on the given node.
    Ptr<RenderNode> triangleOn(const Ptr<Node>& node) {
        Ptr<RenderNode> r = createNodeAs<RenderNode>("model::RenderNode");
        r->links = {RenderLink{node}};
        r->vertices.setAttribute(POSITION0, 3, {0, 0, 0, 1, 0, 0, 0, 1, 0});
        r->indices = Indices(kTriangleList, {0, 1, 2});
        root->addRenderNode(r);
        return r;
    }
    Ptr<TestUser> user() {
        Ptr<TestUser> u(new TestUser);
        root->addRenderNode(u);
        return u;
    }
};

// The link questions answered by walking every user on each call.
model::utils::NodeHelpers straightforwardLinks(RootNode& root);

// One line per tree node, pre-order and indented by depth: class, name and the fields the
// optimisers change; then one line per user with the tree position each link points at and the
// matrices a TestUser took.
std::string describe(const RootNode& root);

}  // namespace optimizer_test
