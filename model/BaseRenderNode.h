#pragma once
// The base of everything in the root's render list: a node drawn with a material.

#include "model/BaseMaterial.h"
#include "model/BaseNode.h"

namespace model {

class BaseRenderNode : public BaseNode {
public:
    MaterialPtr material;
};

}  // namespace model
