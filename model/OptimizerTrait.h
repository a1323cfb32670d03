#pragma once
// What a tree node class allows the tree optimisers.

#include "core/Math.h"

namespace model {

// What may happen when a static transform is pushed down past a node.
enum class TransformPolicy : int {
    Absorb = 0,       // the node takes the matrix into its own
    Block = 1,        // the transform stays above the node
    PassThrough = 2,  // the node has no transform of its own; the matrix goes on below it
};

class OptimizerTrait {
public:
    virtual TransformPolicy transformPolicy() const { return TransformPolicy::PassThrough; }
    // Replaces the own local matrix L by L x m; nothing for classes that do not absorb.
    virtual void absorbTransform(const nq::Matrixd& m) { (void)m; }
    // True if the place of each child means something, so that no child may be removed, added
    // or replaced.
    virtual bool hasFixedChildren() const { return false; }

protected:
    OptimizerTrait() = default;
    OptimizerTrait(const OptimizerTrait&) = default;
    OptimizerTrait& operator=(const OptimizerTrait&) = default;
    ~OptimizerTrait() = default;
};

}  // namespace model
