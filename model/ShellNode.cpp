#include "model/ShellNode.h"

#include "model/BakeTransform.h"

namespace model {

bool ShellNode::applyTransform(std::uint32_t link, const nq::Matrixd& m) {
    checkLink(link, 1);
    return bakeTransform(vertices, link, m);
}

}  // namespace model
