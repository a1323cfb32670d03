#include "model/ArgAnimationNode.h"
#include "model/ArgVisibilityNode.h"
#include "model/utils/Optimizers.h"

namespace model {

namespace {

template <class Key>
void scaleTimes(std::vector<Key>& keys, double factor) {
    for (Key& key : keys) {
        key.time *= factor;
    }
}

}  // namespace

// Key values stay as they are, and so does the order of the keys.
void rescaleAnimationKeys(Ptr<Node> root, double factor) {
    if (!root) {
        return;
    }
    root->visit([factor](const Ptr<Node>& node) {
        if (auto* animation = dynamic_cast<ArgAnimationNode*>(node.get())) {
            for (PositionChannel& c : animation->positionChannels) {
                scaleTimes(c.keys, factor);
            }
            for (RotationChannel& c : animation->rotationChannels) {
                scaleTimes(c.keys, factor);
            }
            for (ScaleChannel& c : animation->scaleChannels) {
                scaleTimes(c.rotationKeys, factor);
                scaleTimes(c.scaleKeys, factor);
            }
        } else if (node->nodeType() == NodeType::ArgVisibilityNode) {
            for (VisibilityEntry& entry : static_cast<ArgVisibilityNode&>(*node).entries) {
                for (auto& [start, end] : entry.ranges) {
                    start *= factor;
                    end *= factor;
                }
            }
        }
        return true;
    });
}

}  // namespace model
