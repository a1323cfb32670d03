#pragma once
// The base of the nodes that sit in the root's lists (connectors, render, shell and light nodes)
// and of the root itself. They are not part of the tree: they hang on tree nodes through numbered
// links.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "core/Math.h"
#include "model/INode.h"
#include "model/Node.h"
#include "model/PropertyList.h"

namespace model {

class Node;
class RootNode;

class BaseNode : public INode {
public:
    BaseNode() = default;
    // A copy is in no list yet, so it has no root.
    BaseNode(const BaseNode& other);
    BaseNode& operator=(const BaseNode& other);
    ~BaseNode() override = default;

    virtual std::uint32_t linkCount() const { return 0; }
    // The tree node of link i, or empty.
    virtual Ptr<Node> link(std::uint32_t i) const;
    virtual void setLink(std::uint32_t i, Ptr<Node> node);
    // Bakes m into this node's data of link i (the part that hangs on that link), so that the
    // link can move above the transform it stood under. False when the class cannot.
    virtual bool applyTransform(std::uint32_t link, const nq::Matrixd& m);
    // Calls f with each argument number the node uses: by default each animated property's
    // argument that is bound.
    virtual void forEachArgument(const std::function<void(std::uint32_t)>& f) const;

    // The root whose list holds this node; set when the node is added to a list.
    RootNode* root = nullptr;
    // Class version; 0 means none is written.
    std::uint32_t version = 0;
    std::string name;
    PropertyList properties;

protected:
    // Link numbers past linkCount() are a programming error: std::out_of_range.
    static void checkLink(std::uint32_t i, std::size_t count);
    // Element i of a link array, checked.
    template <class Links>
    static auto& linkIn(Links&& links, std::uint32_t i) {
        checkLink(i, links.size());
        return links[i];
    }
};

}  // namespace model
