#pragma once
// An animated bone: always saved under its own name, and never crossed by a pushed transform.

#include "model/ArgAnimationNode.h"
#include "model/IBone.h"

namespace model {

class ArgAnimatedBone : public ArgAnimationNode, public IBone {
public:
    MODEL_NODE_CLASS(ArgAnimatedBone)

    NodeType fileNodeType() const override { return NodeType::ArgAnimatedBone; }
    TransformPolicy transformPolicy() const override { return TransformPolicy::Block; }
    void absorbTransform(const nq::Matrixd&) override {}
};

}  // namespace model
