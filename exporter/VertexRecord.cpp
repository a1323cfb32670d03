#include "exporter/VertexRecord.h"

#include <bit>
#include <cstring>

namespace exporter {
namespace {

// A hash over 32-bit words that takes a whole word a step: each word is mixed in with a multiply
// and a rotation, and the end folds the high bits down, where the table takes its slot from the
// low ones.
class WordHash {
public:
    void add(std::uint32_t word) { h_ = std::rotl((h_ ^ word) * 0x9E3779B97F4A7C15ull, 27); }
    void add(float f) { add(std::bit_cast<std::uint32_t>(f)); }
    template <std::size_t N>
    void add(const std::array<float, N>& values) {
        for (float f : values) {
            add(f);
        }
    }
    std::size_t value() const {
        std::uint64_t h = h_ * 0xFF51AFD7ED558CCDull;
        return static_cast<std::size_t>(h ^ (h >> 32));
    }

private:
    std::uint64_t h_ = 0xCBF29CE484222325ull;
};

template <std::size_t N>
bool sameFloats(const std::array<float, N>& a, const std::array<float, N>& b) {
    return std::memcmp(a.data(), b.data(), sizeof(float) * N) == 0;
}

}  // namespace

bool sameBits(const VertexRecord& a, const VertexRecord& b) {
    if (a.smoothingGroup != b.smoothingGroup || a.boneIndices != b.boneIndices ||
        a.texCoords.size() != b.texCoords.size()) {
        return false;
    }
    if (!sameFloats(a.position, b.position) || !sameFloats(a.normal, b.normal) ||
        !sameFloats(a.morphPosition, b.morphPosition) || !sameFloats(a.morphNormal, b.morphNormal) ||
        !sameFloats(a.boneWeights, b.boneWeights)) {
        return false;
    }
    for (std::size_t i = 0; i < a.texCoords.size(); ++i) {
        if (!sameFloats(a.texCoords[i], b.texCoords[i])) {
            return false;
        }
    }
    return true;
}

std::size_t hashBits(const VertexRecord& record) {
    WordHash h;
    h.add(record.position);
    h.add(record.morphPosition);
    h.add(record.normal);
    h.add(record.morphNormal);
    h.add(record.smoothingGroup);
    for (const auto& uv : record.texCoords) {
        h.add(uv);
    }
    h.add(record.boneWeights);
    h.add(record.boneIndices);
    return h.value();
}

std::vector<std::uint32_t> weldRecords(std::vector<VertexRecord>& records,
                                       std::vector<std::uint32_t>& indices) {
    // An open-addressed table of the first record of each kind, with its hash beside it so that
    // most probes of a different record stop at the hash. It holds at most half its slots.
    constexpr std::uint32_t kEmpty = 0xFFFFFFFFu;
    std::size_t capacity = 16;
    while (capacity < records.size() * 2) {
        capacity *= 2;
    }
    const std::size_t mask = capacity - 1;
    std::vector<std::uint32_t> slots(capacity, kEmpty);
    std::vector<std::size_t> slotHashes(capacity);
    std::vector<std::uint32_t> remap(records.size());
    std::vector<std::uint32_t> keep;
    for (std::uint32_t i = 0; i < records.size(); ++i) {
        const std::size_t hash = hashBits(records[i]);
        std::size_t slot = hash & mask;
        while (slots[slot] != kEmpty &&
               !(slotHashes[slot] == hash && sameBits(records[slots[slot]], records[i]))) {
            slot = (slot + 1) & mask;
        }
        if (slots[slot] == kEmpty) {
            slots[slot] = i;
            slotHashes[slot] = hash;
            remap[i] = static_cast<std::uint32_t>(keep.size());
            keep.push_back(i);
        } else {
            remap[i] = remap[slots[slot]];
        }
    }
    // With every record distinct the records and indices stand as they are.
    if (keep.size() == records.size()) {
        return remap;
    }
    std::vector<VertexRecord> welded;
    welded.reserve(keep.size());
    for (std::uint32_t i : keep) {
        welded.push_back(std::move(records[i]));
    }
    records = std::move(welded);
    for (std::uint32_t& index : indices) {
        index = remap[index];
    }
    return remap;
}

}  // namespace exporter
