#include "model/INode.h"

#include "model/ObjectRegistry.h"

namespace model {

Ptr<INode> INode::clone() const {
    // Every class is registered under the name of its node type.
    Ptr<IObject> copy = ObjectRegistry::instance().copyObject(*this, nodeTypeName(nodeType()));
    return Ptr<INode>(dynamic_cast<INode*>(copy.get()));
}

}  // namespace model
