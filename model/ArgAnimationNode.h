#pragma once
// A transform animated along arguments: keyed position, rotation and scale channels over a fixed
// base. Saved under the narrowest of four names that fits the keys it has.

#include <cstdint>
#include <vector>

#include "model/TransformNode.h"

namespace model {

struct PositionKey {
    double time = 0;
    nq::Vec3d value;
};
struct RotationKey {
    double time = 0;
    nq::Quatd value;
};
struct ScaleKey {
    double time = 0;
    nq::Vec3d value;
};

struct PositionChannel {
    std::uint32_t argument = kNoArgument;
    std::vector<PositionKey> keys;
};
struct RotationChannel {
    std::uint32_t argument = kNoArgument;
    std::vector<RotationKey> keys;
};
// Scale comes with the orientation of its axes, keyed apart.
struct ScaleChannel {
    std::uint32_t argument = kNoArgument;
    std::vector<RotationKey> rotationKeys;
    std::vector<ScaleKey> scaleKeys;
};

class ArgAnimationNode : public TransformNode {
public:
    MODEL_NODE_CLASS(ArgAnimationNode)

    // Position only: "model::ArgPositionNode"; rotation only: "model::ArgRotationNode"; scale only
    // or no keys at all: "model::ArgScaleNode"; any mix: "model::ArgAnimationNode".
    NodeType fileNodeType() const override;
    void worldTransform(const IModelArguments& arguments, nq::Matrixd& m) const override;
    void forEachArgument(const std::function<void(std::uint32_t)>& f) const override;

    // True when no channel has a key: the node then applies only its rest matrix.
    virtual bool isVoid() const;
    // What the node applies with no keys: Q x S x Q' x R x T x B, with Q the scale orientation,
    // S the scale, Q' the inverse of Q, R the rotation (left out when exactly the identity), T the
    // translation and B the base matrix.
    nq::Matrixd restMatrix() const;
    // The same product with each part taken from its channels at these argument values, where
    // the node has keys for it.
    nq::Matrixd animatedMatrix(const IModelArguments& arguments) const;

    bool hasPositionKeys() const;
    bool hasRotationKeys() const;
    bool hasScaleKeys() const;

    // The fixed parts, in the order of the record: translation, rotation, scale orientation,
    // scale. The base matrix is the TransformNode matrix.
    nq::Vec3d basePosition;
    nq::Quatd baseRotationA;
    nq::Quatd baseRotationB;
    nq::Vec3d baseScale{{1, 1, 1}};

    std::vector<PositionChannel> positionChannels;
    std::vector<RotationChannel> rotationChannels;
    std::vector<ScaleChannel> scaleChannels;
};

}  // namespace model
