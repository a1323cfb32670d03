#pragma once
// A collision mesh: positions and faces.

#include "model/BaseShellNode.h"
#include "model/Indices.h"
#include "model/NodeClassMacros.h"
#include "model/Vertices.h"

namespace model {

class ShellNode : public BaseShellNode {
public:
    MODEL_NODE_CLASS(ShellNode)

    bool applyTransform(std::uint32_t link, const nq::Matrixd& m) override;
    bool isEmpty() const override { return indices.primitiveCount() == 0; }

    Vertices vertices;
    Indices indices;
};

}  // namespace model
