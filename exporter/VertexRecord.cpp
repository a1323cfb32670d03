#include "exporter/VertexRecord.h"

#include <bit>
#include <cstring>
#include <unordered_set>

namespace exporter {
namespace {

// FNV-1a over 32-bit words.
class WordHash {
public:
    void add(std::uint32_t word) {
        for (int i = 0; i < 4; ++i) {
            h_ ^= (word >> (8 * i)) & 0xFFu;
            h_ *= 0x100000001B3ull;
        }
    }
    void add(float f) { add(std::bit_cast<std::uint32_t>(f)); }
    template <std::size_t N>
    void add(const std::array<float, N>& values) {
        for (float f : values) {
            add(f);
        }
    }
    std::size_t value() const { return static_cast<std::size_t>(h_); }

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
    // The set holds the numbers of the first record of each kind; a later equal record finds it.
    auto hash = [&](std::uint32_t i) { return hashBits(records[i]); };
    auto equal = [&](std::uint32_t a, std::uint32_t b) { return sameBits(records[a], records[b]); };
    std::unordered_set<std::uint32_t, decltype(hash), decltype(equal)> firsts(records.size(), hash, equal);
    std::vector<std::uint32_t> remap(records.size());
    std::vector<std::uint32_t> keep;
    for (std::uint32_t i = 0; i < records.size(); ++i) {
        auto [it, inserted] = firsts.insert(i);
        if (inserted) {
            remap[i] = static_cast<std::uint32_t>(keep.size());
            keep.push_back(i);
        } else {
            remap[i] = remap[*it];
        }
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
