#include "model/io/MemBinaryFileW.h"

#include <cstdint>
#include <cstring>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace model {

namespace {

// Deferred strings looked up at once: enough for the waits to overlap, few enough for the places
// of their ordinals to be still in the cache.
constexpr std::size_t kStringBatch = 512;
// How many lookups ahead an index slot is fetched: about as many as the memory system serves at
// once.
constexpr std::size_t kFetchAhead = 24;

}  // namespace

void MemBinaryFileW::reserve(std::size_t size) {
    if (size <= buffer_.capacity()) {
        return;
    }
    buffer_.reserve(size);
#if defined(MADV_HUGEPAGE)
    // Only whole huge pages inside the block are advised; the advice is a hint, and a refusal
    // changes nothing but the speed.
    constexpr std::uintptr_t kHugePage = std::uintptr_t{2} << 20;
    const auto begin = reinterpret_cast<std::uintptr_t>(buffer_.data());
    const std::uintptr_t first = (begin + kHugePage - 1) & ~(kHugePage - 1);
    const std::uintptr_t last = (begin + buffer_.capacity()) & ~(kHugePage - 1);
    if (last > first) {
        ::madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
    }
#endif
}

std::size_t MemBinaryFileW::write(const void* data, std::size_t size) {
    if (position_ < buffer_.size() && !pending_.empty()) {
        // An insert would move the places of deferred ordinals: fill them first.
        resolveStrings();
    }
    if (position_ > buffer_.size()) {
        // A cursor past the end has no bytes to insert before: the file grows with zeros up to it.
        buffer_.resize(position_, 0);
    }
    const auto* bytes = static_cast<const unsigned char*>(data);
    auto at = buffer_.begin() + static_cast<std::ptrdiff_t>(position_);
    if (position_ == buffer_.size()) {
        buffer_.insert(buffer_.end(), bytes, bytes + size);
    } else {
        buffer_.insert(at, bytes, bytes + size);
    }
    position_ += size;
    return size;
}

void MemBinaryFileW::writeString(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    RecentText& recent = recentSlot(text.data());
    if (recent.data == text.data() && recent.size == text.size() && !text.empty() &&
        std::memcmp(strings_.index()[recent.ordinal], text.data(), text.size()) == 0) {
        // A text that already has its ordinal: deferred texts before it cannot change that.
        writeU32(recent.ordinal);
        return;
    }
    if (!deferStrings_ || position_ != buffer_.size()) {
        // Earlier texts take their ordinals first, so the order of first use stays.
        resolveStrings();
        recent = RecentText{text.data(), text.size(), strings_.internOrdinal(text)};
        writeU32(recent.ordinal);
        return;
    }
    const std::uint64_t hash = StringPool::hashOf(text);
    pending_.push_back(PendingString{position_, hash, text.data(), pendingText_.size(), text.size()});
    pendingText_.insert(pendingText_.end(), text.begin(), text.end());
    writeU32(0);
    if (pending_.size() == kStringBatch) {
        resolveStrings();
    }
}

void MemBinaryFileW::resolveStrings() {
    std::size_t ahead = 0;
    for (std::size_t i = 0; i < pending_.size(); ++i) {
        for (; ahead < pending_.size() && ahead < i + kFetchAhead; ++ahead) {
            strings_.prefetch(pending_[ahead].hash);
        }
        const PendingString& p = pending_[i];
        const std::uint32_t ordinal =
            strings_.internOrdinal(std::string_view(pendingText_.data() + p.textAt, p.length), p.hash);
        for (std::size_t b = 0; b < 4; ++b) {
            buffer_[p.position + b] = static_cast<unsigned char>(ordinal >> (8 * b));
        }
        recentSlot(p.data) = RecentText{p.data, p.length, ordinal};
    }
    pending_.clear();
    pendingText_.clear();
}

}  // namespace model
