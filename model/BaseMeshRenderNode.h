#pragma once
// A render node drawn from its own vertices and indices.

#include "model/BaseRenderNode.h"
#include "model/Indices.h"
#include "model/Vertices.h"

namespace model {

class BaseMeshRenderNode : public BaseRenderNode {
public:
    Vertices vertices;
    Indices indices;
};

}  // namespace model
