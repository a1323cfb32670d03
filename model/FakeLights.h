#pragma once
// One fake light: a glowing sprite, not a light source.

#include <cstdint>

#include "core/Math.h"

namespace model {

struct FakeOmniLight {
    nq::Vec3d position;
    // Texture window: lower left and upper right.
    osg::Vec2f texLB;
    osg::Vec2f texRT;
    float size = 0;
    // Number of the node's parent the light hangs on.
    std::uint32_t parent = 0;
    bool operator==(const FakeOmniLight&) const = default;
};

struct FakeSpotLight : FakeOmniLight {
    // Texture window seen from behind.
    osg::Vec2f backTexLB;
    osg::Vec2f backTexRT;
    std::uint8_t flags = 0;
    bool operator==(const FakeSpotLight&) const = default;
};

// Moves a light by m, and scales its size by s, the uniform scale of m.
inline void transformFakeLight(FakeOmniLight& light, const nq::Matrixd& m, double s) {
    light.position = m.transformPoint(light.position);
    light.size = static_cast<float>(light.size * s);
}

}  // namespace model
