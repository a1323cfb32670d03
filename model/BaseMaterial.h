#pragma once
// The base of the model's materials, shared by the render nodes that use them.

#include "core/Ptr.h"
#include "core/Shared.h"

namespace model {

class BaseMaterial : public nq::Shared {
public:
    ~BaseMaterial() override = default;
};

using MaterialPtr = nq::Ptr<BaseMaterial>;

}  // namespace model
