#include "model/VertexAttribute.h"

#include <cstddef>

namespace model {

void VertexAttribute::resize(std::int32_t newSize) {
    if (newSize == size) {
        return;
    }
    if (newSize == 0) {
        size = 0;
        data.clear();
        return;
    }
    std::vector<float> out;
    if (size > 0 && newSize < size) {
        std::size_t oldSize = static_cast<std::size_t>(size);
        std::size_t keep = static_cast<std::size_t>(newSize);
        std::size_t vertices = data.size() / oldSize;
        out.reserve(vertices * keep);
        for (std::size_t v = 0; v < vertices; ++v) {
            out.insert(out.end(), data.begin() + static_cast<std::ptrdiff_t>(v * oldSize),
                       data.begin() + static_cast<std::ptrdiff_t>(v * oldSize + keep));
        }
    } else if (size > 0) {
        std::size_t oldSize = static_cast<std::size_t>(size);
        std::size_t pad = static_cast<std::size_t>(newSize - size);
        out.reserve(data.size() / oldSize * static_cast<std::size_t>(newSize) + pad);
        for (std::size_t i = 0; i < data.size(); ++i) {
            out.push_back(data[i]);
            if (i != 0 && i % oldSize == 0) {
                out.insert(out.end(), pad, 0.0f);
            }
        }
    } else {
        // An old size of 0 has no non-zero multiples to pad behind.
        out = data;
    }
    size = newSize;
    data = std::move(out);
}

}  // namespace model
