#pragma once
// The tree nodes: transform-like nodes linked to parent, children and siblings.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/EmTree.h"
#include "core/Math.h"
#include "model/IModelArguments.h"
#include "model/INode.h"
#include "model/NodeClassMacros.h"
#include "model/OptimizerTrait.h"
#include "model/PropertyList.h"

namespace model {

class Node : public nq::EmTree<Node, nq::EmTreePtrStorage<Node, IObjectDeleter>>,
             public OptimizerTrait,
             public INode {
public:
    using Predicate = std::function<bool(const Ptr<Node>&)>;

    Node() = default;
    Node(const Node&) = default;
    Node& operator=(const Node&) = default;
    ~Node() override = default;

    MODEL_NODE_CLASS(Node)

    // The type under which the node is saved.
    virtual NodeType fileNodeType() const { return nodeType(); }
    // Multiplies the contribution of this node and of each of its parents, nearest first, into m.
    virtual void worldTransform(const IModelArguments& arguments, nq::Matrixd& m) const;
    // Asks the parents, while visible stays true, whether child is shown at these arguments.
    virtual void visibility(const IModelArguments& arguments, const Node* child, bool& visible) const;
    // Hands a matrix pushed from above to this node. Returns what goes on down to the children;
    // a node that ends the push may hand a matrix out through out.
    virtual nq::Matrixd pushTransform(nq::Matrixd& out, const nq::Matrixd& m, bool handOut);
    // Calls f with each argument number the node uses.
    virtual void forEachArgument(const std::function<void(std::uint32_t)>& f) const;
    virtual bool isVisibilityGate() const { return false; }

    // Pre-order walk from this node; a false result skips the node's children.
    void visit(const Predicate& predicate);
    // This node, then each parent, until the predicate returns false.
    void visitAncestors(const Predicate& predicate);
    // This node and its parents, nearest first.
    std::vector<Ptr<Node>> ancestors();
    // The nearest node that is an ancestor of both (either may be the node itself), or empty.
    static Ptr<Node> commonAncestor(const Ptr<Node>& a, const Ptr<Node>& b);

    // A null text clears the name.
    void setName(const char* text) { name = text ? text : ""; }
    // Stores the class version as the "__VERSION__" property, unless it already holds the value.
    void setVersion(std::uint32_t value);

    std::string name;
    PropertyList properties;
};

}  // namespace model
