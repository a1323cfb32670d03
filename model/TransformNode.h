#pragma once
// A tree node with a static local matrix.

#include "model/Node.h"

namespace model {

class TransformNode : public Node {
public:
    MODEL_NODE_CLASS(TransformNode)

    TransformPolicy transformPolicy() const override { return TransformPolicy::Absorb; }
    void absorbTransform(const nq::Matrixd& m) override { matrix = matrix * m; }

    void worldTransform(const IModelArguments& arguments, nq::Matrixd& m) const override;
    // The pushed matrix goes into this node's own (own x m). With handOut the product leaves the
    // node through out and the node keeps the identity; otherwise the node keeps the product.
    // Either way nothing goes on to the children.
    nq::Matrixd pushTransform(nq::Matrixd& out, const nq::Matrixd& m, bool handOut) override;

    // Row-vector form, translation in the last row.
    nq::Matrixd matrix;
};

}  // namespace model
