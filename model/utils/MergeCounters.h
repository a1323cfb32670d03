#pragma once
// The counts of the reasons why two render nodes did not merge, for diagnosis.

#include <array>
#include <cstdint>

namespace model::utils {

struct MergeCounters {
    // Which counter a rejection adds to.
    enum Reason : int {
        kMaterial = 0,
        kProperties = 2,
        kPrimitive = 3,
        // Both a blending mode that needs its own sort order and a billboard above the node.
        kBlendingOrBillboard = 4,
        kVisibility = 5,
        kLod = 6,
        kSpotShape = 7,
    };

    void reject(Reason reason) { ++counts[reason]; }

    std::array<std::uint32_t, 8> counts{};
    bool operator==(const MergeCounters&) const = default;
};

}  // namespace model::utils
