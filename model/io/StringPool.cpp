#include "model/io/StringPool.h"

#include <cstring>
#include <functional>

namespace model {

std::uint64_t StringPool::hashOf(std::string_view text) {
    // The library's string hash takes eight bytes a step; short names cost a few cycles.
    return std::hash<std::string_view>{}(text);
}

std::size_t StringPool::find(std::string_view text, std::uint64_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = home(hash);; i = (i + 1) & mask) {
        const Slot& slot = slots_[i];
        if (slot.ordinal == kEmpty ||
            (slot.hash == hash && slot.length == text.size() &&
             (text.empty() || std::memcmp(index_[slot.ordinal], text.data(), text.size()) == 0))) {
            return i;
        }
    }
}

void StringPool::reserve(std::size_t count) {
    index_.reserve(count);
    int bits = slotBits_;
    while ((std::size_t{1} << bits) < 2 * count) {
        ++bits;
    }
    if (bits != slotBits_) {
        rebuild(bits);
    }
}

void StringPool::rebuild(int slotBits) {
    auto old = std::move(slots_);
    slotBits_ = slotBits;
    slots_.assign(std::size_t{1} << slotBits_, Slot{});
    const std::size_t mask = slots_.size() - 1;
    for (const Slot& slot : old) {
        if (slot.ordinal != kEmpty) {
            std::size_t i = home(slot.hash);
            while (slots_[i].ordinal != kEmpty) {
                i = (i + 1) & mask;
            }
            slots_[i] = slot;
        }
    }
}

std::uint32_t StringPool::internOrdinal(std::string_view text, std::uint64_t hash) {
    if (2 * (index_.size() + 1) > slots_.size()) {
        rebuild(slotBits_ + 1);
    }
    Slot& slot = slots_[find(text, hash)];
    if (slot.ordinal != kEmpty) {
        return slot.ordinal;
    }

    const std::uint64_t need = text.size() + 1;
    bool fits = !pages_.empty() && pages_.back().bytes.size() - pages_.back().used >= need;
    if (!fits) {
        StringPage page;
        // A text longer than a page gets a page of exactly its size and its NUL.
        page.bytes.assign(need > pageSize_ ? need : pageSize_, '\0');
        pages_.push_back(std::move(page));
    }
    StringPage& page = pages_.back();
    char* stored = page.bytes.data() + page.used;
    if (!text.empty()) {
        std::memcpy(stored, text.data(), text.size());
    }
    stored[text.size()] = '\0';
    page.used += need;
    ++page.count;
    tableSize_ += need;

    auto ordinal = static_cast<std::uint32_t>(index_.size());
    index_.push_back(stored);
    slot = Slot{hash, static_cast<std::uint32_t>(text.size()), ordinal};
    return ordinal;
}

std::uint32_t StringPool::ordinal(std::string_view text) const {
    return slots_[find(text, hashOf(text))].ordinal;
}

std::vector<char> StringPool::flatten() const {
    std::vector<char> table(tableSize_);
    flattenInto(reinterpret_cast<unsigned char*>(table.data()));
    return table;
}

void StringPool::flattenInto(unsigned char* to) const {
    for (const StringPage& page : pages_) {
        if (page.used != 0) {
            std::memcpy(to, page.bytes.data(), page.used);
            to += page.used;
        }
    }
}

}  // namespace model
