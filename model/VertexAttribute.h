#pragma once
// One attribute of one mesh: the floats of all vertices back to back.

#include <cstdint>
#include <vector>

namespace model {

struct VertexAttribute {
    std::vector<float> data;
    // Floats per vertex.
    std::int32_t size = 0;

    // Changes the floats per vertex. Shrinking keeps the first newSize floats of each vertex.
    // Growing pads with zeros behind every flat index that is a non-zero multiple of the old size,
    // which puts the padding one float too far on and gives the last vertex none; it is kept so,
    // since no correct export grows an attribute.
    void resize(std::int32_t newSize);

    bool operator==(const VertexAttribute&) const = default;
};

}  // namespace model
