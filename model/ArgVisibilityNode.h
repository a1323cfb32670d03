#pragma once
// Shows its subtree only while each of its arguments lies in one of that argument's ranges.

#include <cstdint>
#include <utility>
#include <vector>

#include "model/Node.h"

namespace model {

struct VisibilityEntry {
    std::uint32_t argument = 0;
    // (start, end): visible for start <= value < end.
    std::vector<std::pair<double, double>> ranges;
};

class ArgVisibilityNode : public Node {
public:
    MODEL_NODE_CLASS(ArgVisibilityNode)

    void visibility(const IModelArguments& arguments, const Node* child, bool& visible) const override;
    void forEachArgument(const std::function<void(std::uint32_t)>& f) const override;
    bool isVisibilityGate() const override { return true; }

    std::vector<VisibilityEntry> entries;
};

}  // namespace model
