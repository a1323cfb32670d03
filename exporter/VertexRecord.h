#pragma once
// One face corner of a mesh as the mesh converter gathers it, before equal corners are welded.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <boost/container/small_vector.hpp>

namespace exporter {

struct VertexRecord {
    std::array<float, 3> position{};
    std::array<float, 3> morphPosition{};
    std::array<float, 3> normal{};
    std::array<float, 3> morphNormal{};
    std::uint32_t smoothingGroup = 0;
    // One (u, v) pair for each map channel of the material, in the material's order. Most
    // materials have one or two channels, which then live in the record itself: a mesh has
    // millions of corners, and a heap block for each would cost more than the rest of the record.
    boost::container::small_vector<std::array<float, 2>, 2> texCoords;
    std::array<float, 4> boneWeights{};
    // Four bone numbers, one byte each.
    std::uint32_t boneIndices = 0;
};

// Equality of every field bit for bit: 0.0 and -0.0 differ, a NaN equals the same NaN.
bool sameBits(const VertexRecord& a, const VertexRecord& b);
// A hash that agrees with sameBits.
std::size_t hashBits(const VertexRecord& record);

// Joins records that are the same bit for bit. records keeps the first of each kind in the order
// of first appearance; indices, which point into the old records, are rewritten to point into the
// new ones. The result maps each old record to its new place.
std::vector<std::uint32_t> weldRecords(std::vector<VertexRecord>& records,
                                       std::vector<std::uint32_t>& indices);

}  // namespace exporter
