#pragma once
// Collision lines: a list of segments on one tree node.

#include <vector>

#include "model/BaseShellNode.h"
#include "model/NodeClassMacros.h"

namespace model {

struct Segment {
    osg::Vec3f a;
    osg::Vec3f b;
    bool operator==(const Segment&) const = default;
};

class SegmentsNode : public BaseShellNode {
public:
    MODEL_NODE_CLASS(SegmentsNode)

    // Both ends of every segment go through m.
    bool applyTransform(std::uint32_t link, const nq::Matrixd& m) override;
    bool isEmpty() const override { return segments.empty(); }

    std::vector<Segment> segments;
};

}  // namespace model
