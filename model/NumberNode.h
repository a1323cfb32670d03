#pragma once
// A number on an instrument: digit meshes that the renderer selects by an argument, with a list
// of 16-byte digit entries for each parent.

#include <array>
#include <cstdint>
#include <vector>

#include "model/RenderNode.h"

namespace model {

// One digit entry as it is written: 16 bytes, packed by the number conversion.
struct NumberEntry {
    std::array<std::uint32_t, 4> words{};
    bool operator==(const NumberEntry&) const = default;
};

class NumberNode : public RenderNode {
public:
    MODEL_NODE_CLASS(NumberNode)

    // One list per parent, in parent order.
    std::vector<std::vector<NumberEntry>> entries;
};

}  // namespace model
