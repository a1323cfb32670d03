#pragma once
// Levels of detail: each child is shown within its own distance range.

#include <utility>
#include <vector>

#include "model/Node.h"

namespace model {

class LodNode : public Node {
public:
    MODEL_NODE_CLASS(LodNode)

    TransformPolicy transformPolicy() const override { return TransformPolicy::Block; }
    bool hasFixedChildren() const override { return true; }

    // (near, far) per child, in child order.
    std::vector<std::pair<double, double>> ranges;
};

}  // namespace model
