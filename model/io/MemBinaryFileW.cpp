#include "model/io/MemBinaryFileW.h"

#include <cstdint>
#include <cstring>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace model {

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
    RecentText& recent = recent_[(reinterpret_cast<std::uintptr_t>(text.data()) >> 3) % recent_.size()];
    if (recent.data != text.data() || recent.size != text.size() || text.empty() ||
        std::memcmp(strings_.index()[recent.ordinal], text.data(), text.size()) != 0) {
        recent = RecentText{text.data(), text.size(), strings_.internOrdinal(text)};
    }
    writeU32(recent.ordinal);
}

}  // namespace model
