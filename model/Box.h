#pragma once
// An axis-aligned box of 32-bit floats. A new box is empty: its minima are the largest float and
// its maxima the most negative one, so that the first point sets both.

#include <bit>
#include <cstdint>

#include "core/Math.h"

namespace model {

struct Box {
    static constexpr float kEmptyMin = std::bit_cast<float>(std::uint32_t{0x7F7FFFFFu});
    static constexpr float kEmptyMax = std::bit_cast<float>(std::uint32_t{0xFF7FFFFFu});

    osg::Vec3f min{{kEmptyMin, kEmptyMin, kEmptyMin}};
    osg::Vec3f max{{kEmptyMax, kEmptyMax, kEmptyMax}};

    // Each maximum is at least its minimum.
    bool isValid() const { return max[0] >= min[0] && max[1] >= min[1] && max[2] >= min[2]; }

    void expand(const osg::Vec3f& p) {
        for (int i = 0; i < 3; ++i) {
            min[i] = p[i] < min[i] ? p[i] : min[i];
            max[i] = p[i] > max[i] ? p[i] : max[i];
        }
    }

    bool operator==(const Box&) const = default;
};

}  // namespace model
