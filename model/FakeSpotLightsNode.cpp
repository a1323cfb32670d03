#include "model/FakeSpotLightsNode.h"

#include "model/BakeTransform.h"
#include "model/Node.h"

namespace model {

bool FakeSpotLightsNode::applyTransform(std::uint32_t link, const nq::Matrixd& m) {
    checkLink(link, links.size());
    double s = uniformScale(m);
    if (s == 0) {
        return false;
    }
    links[link].direction = m.transformVector(links[link].direction);
    for (std::size_t i = 0; i < lights.size(); ++i) {
        if (lights[i].parent != link) {
            continue;
        }
        transformFakeLight(lights[i], m, s);
        if (i < directions.size()) {
            directions[i] = m.transformVector(directions[i]);
        }
    }
    return true;
}

}  // namespace model
