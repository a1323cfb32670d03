#pragma once
// Marks the place of a number during an export; the number conversion replaces what hangs under
// it. It is saved and visited as a plain node.

#include "model/Node.h"

namespace model {

class TmpNumberRoot : public Node {
public:
    NodeType nodeType() const override { return NodeType::TmpNumberRoot; }
    void accept(INodeVisitor& visitor) override { visitor.visit(static_cast<const Node&>(*this)); }
    void accept(INodeVisitor& visitor) const override { visitor.visit(static_cast<const Node&>(*this)); }

    TransformPolicy transformPolicy() const override { return TransformPolicy::Block; }
};

}  // namespace model
