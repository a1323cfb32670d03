#pragma once
// The common interface of every node, in the tree and in the root's lists.

#include "model/INodeVisitor.h"
#include "model/IObject.h"
#include "model/NodeType.h"

namespace model {

class INode : public IObject {
public:
    INode() = default;
    INode(const INode&) = default;
    INode& operator=(const INode&) = default;
    ~INode() override = default;

    virtual NodeType nodeType() const = 0;
    virtual void accept(INodeVisitor& visitor) = 0;
    virtual void accept(INodeVisitor& visitor) const = 0;
    // A registry copy under the class's own key, which is the name of its node type; so the
    // copy has the same class and fields. Empty if the registry does not know the class.
    virtual Ptr<INode> clone() const;
};

// clone() cast back to the class of the original.
template <class T>
Ptr<T> cloneNode(const T& node) {
    Ptr<INode> copy = node.clone();
    return Ptr<T>(dynamic_cast<T*>(copy.get()));
}

}  // namespace model
