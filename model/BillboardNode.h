#pragma once
// A transform whose children turn towards the viewer; the transform above it cannot pass it.

#include <cstdint>

#include "model/TransformNode.h"

namespace model {

class BillboardNode : public TransformNode {
public:
    BillboardNode() { setVersion(1); }

    MODEL_NODE_CLASS(BillboardNode)

    TransformPolicy transformPolicy() const override { return TransformPolicy::Block; }
    void absorbTransform(const nq::Matrixd&) override {}

    std::uint32_t billboardType = 0;
    std::uint32_t billboardAxis = 0;
    nq::Vec3d billboardOffset;
};

}  // namespace model
