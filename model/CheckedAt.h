#pragma once
// Bounds-checked element access with the texts the model's failures carry.

#include <cstddef>
#include <stdexcept>

namespace model {

template <class Container>
auto& checkedAt(Container& c, std::size_t i) {
    if (i >= c.size()) {
        throw std::out_of_range("invalid vector subscript");
    }
    return c[i];
}

}  // namespace model
