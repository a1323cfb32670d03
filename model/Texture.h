#pragma once
// One texture slot of a material.

#include <cstdint>
#include <string>

#include "core/Math.h"

namespace model {

struct Texture {
    // Empty means the slot has no texture.
    std::string name;
    nq::Matrixf matrix;
    std::uint32_t wrapU = 2;
    std::uint32_t wrapV = 2;
    std::uint32_t filter = 10;
    std::uint32_t mipFilter = 6;
    std::uint32_t texCoordChannel = 0xFFFFFFFFu;

    bool empty() const { return name.empty(); }
    // Name and the five numbers exactly, the matrix within 1e-5 per element.
    bool equals(const Texture& other) const;
};

}  // namespace model
