#pragma once
// The string table of a file being written: every text once, in order of first use.
//
// Texts are stored NUL-terminated in fixed-size pages; a text longer than a page gets a fresh
// page of exactly its size plus the NUL. A hash index answers "is it there, and which ordinal"
// without scanning, so interning costs O(length) however many strings the model has. The index is
// one flat array probed in place, with the hash and length kept in each slot, so that a lookup
// touches the stored text only when it is almost surely the one sought.

#include <cstdint>
#include <string_view>
#include <vector>

#include "model/io/HugePages.h"

namespace model {

struct StringPage {
    std::vector<char> bytes;
    std::uint32_t count = 0;
    std::uint64_t used = 0;
};

class StringPool {
public:
    explicit StringPool(std::uint64_t pageSize = 4096) : pageSize_(pageSize) { rebuild(10); }
    StringPool(const StringPool&) = delete;
    StringPool& operator=(const StringPool&) = delete;

    // Stores the text if it is new; returns the stored, NUL-terminated copy.
    const char* intern(std::string_view text) { return index_[internOrdinal(text)]; }
    // Stores the text if it is new; returns its ordinal in order of first use. One lookup.
    std::uint32_t internOrdinal(std::string_view text) { return internOrdinal(text, hashOf(text)); }
    // The same with the text's hashOf() computed by the caller.
    std::uint32_t internOrdinal(std::string_view text, std::uint64_t hash);
    // The hash the index files a text under.
    static std::uint64_t hashOf(std::string_view text);
    // Starts loading the index slot of a text with this hash into the cache, so that a lookup
    // a little later need not wait for memory.
    // The index always has slots, so the address needs no test: behind a test the compiler was
    // seen to drop the prefetch altogether.
    void prefetch(std::uint64_t hash) const { __builtin_prefetch(slots_.data() + home(hash)); }
    // Ordinal of an interned text in order of first use, or 0xFFFFFFFF if it was never interned.
    std::uint32_t ordinal(std::string_view text) const;

    // Sizes the index for `count` distinct texts at once, so that interning that many never
    // rebuilds it. Interning more still works; the index then grows as usual.
    void reserve(std::size_t count);

    // The table as it stands in the file: the used bytes of each page, in page order.
    std::vector<char> flatten() const;
    // The number of bytes of the flattened table.
    std::uint64_t tableSize() const { return tableSize_; }
    // Copies the flattened table to `to`, which has room for tableSize() bytes.
    void flattenInto(unsigned char* to) const;

    std::uint64_t pageSize() const { return pageSize_; }
    const std::vector<StringPage>& pages() const { return pages_; }
    // Stored strings in order of first use.
    const std::vector<const char*>& index() const { return index_; }

private:
    std::uint64_t pageSize_;
    std::vector<StringPage> pages_;
    std::vector<const char*> index_;
    // An open-addressing slot: the text's hash, its length and its ordinal, or kEmpty.
    struct Slot {
        std::uint64_t hash = 0;
        std::uint32_t length = 0;
        std::uint32_t ordinal = kEmpty;
    };
    static constexpr std::uint32_t kEmpty = 0xFFFFFFFFu;

    // The position of the slot that holds the text, or of the empty slot where it would go.
    std::size_t find(std::string_view text, std::uint64_t hash) const;
    std::size_t home(std::uint64_t hash) const {
        // The top bits of a multiplicative mix: texts that differ only in their last characters
        // (names with running numbers) still spread over the whole array.
        return static_cast<std::size_t>((hash * 0x9E3779B97F4A7C15ull) >> (64 - slotBits_));
    }
    void rebuild(int slotBits);

    std::uint64_t tableSize_ = 0;
    // A power of two in size, at most half full. Page buffers never move once made, so the
    // stored texts the slots stand for stay where they are.
    std::vector<Slot, LargeBlockAllocator<Slot>> slots_;
    int slotBits_ = 0;
};

}  // namespace model
