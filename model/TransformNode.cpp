#include "model/TransformNode.h"

namespace model {

void TransformNode::worldTransform(const IModelArguments& arguments, nq::Matrixd& m) const {
    m = m * matrix;
    Node::worldTransform(arguments, m);
}

nq::Matrixd TransformNode::pushTransform(nq::Matrixd& out, const nq::Matrixd& m, bool handOut) {
    nq::Matrixd product = matrix * m;
    if (handOut) {
        out = product;
        matrix = nq::Matrixd::identity();
    } else {
        matrix = product;
    }
    return nq::Matrixd::identity();
}

}  // namespace model
