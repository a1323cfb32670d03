#pragma once
// A static bone: a transform with a bone matrix. Transforms are not pushed past it, since the
// skin's vertices depend on where it stands.

#include "model/IBone.h"
#include "model/TransformNode.h"

namespace model {

class Bone : public TransformNode, public IBone {
public:
    MODEL_NODE_CLASS(Bone)

    TransformPolicy transformPolicy() const override { return TransformPolicy::Block; }
    void absorbTransform(const nq::Matrixd&) override {}
};

}  // namespace model
