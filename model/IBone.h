#pragma once
// The bone side of a tree node: the matrix that takes skinned vertices from the model into the
// bone's own space.

#include "core/Math.h"

namespace model {

class IBone {
public:
    virtual ~IBone() = default;

    nq::Matrixd boneMatrix;

protected:
    IBone() = default;
    IBone(const IBone&) = default;
    IBone& operator=(const IBone&) = default;
};

}  // namespace model
