#include "model/ArgVisibilityNode.h"

#include <algorithm>

namespace model {

void ArgVisibilityNode::visibility(const IModelArguments& arguments, const Node* child, bool& visible) const {
    for (const VisibilityEntry& entry : entries) {
        double value = arguments.value(entry.argument);
        bool inRange = std::any_of(entry.ranges.begin(), entry.ranges.end(),
                                   [&](const auto& r) { return r.first <= value && value < r.second; });
        if (!inRange) {
            visible = false;
        }
    }
    Node::visibility(arguments, child, visible);
}

void ArgVisibilityNode::forEachArgument(const std::function<void(std::uint32_t)>& f) const {
    Node::forEachArgument(f);
    for (const VisibilityEntry& entry : entries) {
        if (entry.argument != kNoArgument) {
            f(entry.argument);
        }
    }
}

}  // namespace model
