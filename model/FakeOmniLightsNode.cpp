#include "model/FakeOmniLightsNode.h"

#include "model/BakeTransform.h"
#include "model/Node.h"

namespace model {

bool FakeOmniLightsNode::applyTransform(std::uint32_t link, const nq::Matrixd& m) {
    checkLink(link, links.size());
    double s = uniformScale(m);
    if (s == 0) {
        return false;
    }
    for (FakeOmniLight& light : lights) {
        if (light.parent == link) {
            transformFakeLight(light, m, s);
        }
    }
    return true;
}

}  // namespace model
