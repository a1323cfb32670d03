#pragma once
// The string table of a file being written: every text once, in order of first use.
//
// Texts are stored NUL-terminated in fixed-size pages; a text longer than a page gets a fresh
// page of exactly its size plus the NUL. A hash index answers "is it there, and which ordinal"
// without scanning, so interning costs O(length) however many strings the model has.

#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/Fnv1a.h"

namespace model {

struct StringPage {
    std::vector<char> bytes;
    std::uint32_t count = 0;
    std::uint64_t used = 0;
};

class StringPool {
public:
    explicit StringPool(std::uint64_t pageSize = 4096) : pageSize_(pageSize) {}
    StringPool(const StringPool&) = delete;
    StringPool& operator=(const StringPool&) = delete;

    // Stores the text if it is new; returns the stored, NUL-terminated copy.
    const char* intern(std::string_view text) { return index_[internOrdinal(text)]; }
    // Stores the text if it is new; returns its ordinal in order of first use. One lookup.
    std::uint32_t internOrdinal(std::string_view text);
    // Ordinal of an interned text in order of first use, or 0xFFFFFFFF if it was never interned.
    std::uint32_t ordinal(std::string_view text) const;

    // The table as it stands in the file: the used bytes of each page, in page order.
    std::vector<char> flatten() const;

    std::uint64_t pageSize() const { return pageSize_; }
    const std::vector<StringPage>& pages() const { return pages_; }
    // Stored strings in order of first use.
    const std::vector<const char*>& index() const { return index_; }

private:
    std::uint64_t pageSize_;
    std::vector<StringPage> pages_;
    std::vector<const char*> index_;
    // Views into the pages; page buffers never move once made, so the views stay valid.
    std::unordered_map<std::string_view, std::uint32_t, nq::Fnv1aHash> ordinals_;
};

}  // namespace model
