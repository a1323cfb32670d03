#include "model/SegmentsNode.h"

#include "model/BakeTransform.h"

namespace model {

bool SegmentsNode::applyTransform(std::uint32_t link, const nq::Matrixd& m) {
    checkLink(link, 1);
    if (!isAffine(m)) {
        return false;
    }
    for (Segment& s : segments) {
        s.a = m.transformPoint(s.a);
        s.b = m.transformPoint(s.b);
    }
    return true;
}

}  // namespace model
