#include "model/io/MemBinaryFileW.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include "model/io/HugePages.h"

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
    growTo(size);
}

void MemBinaryFileW::growTo(std::size_t size) {
    if (size <= capacity_) {
        return;
    }
    const std::size_t capacity = std::max(size, 2 * capacity_);
    auto grown = std::make_unique_for_overwrite<unsigned char[]>(capacity);
    const std::size_t written = used();
    if (written != 0) {
        std::memcpy(grown.get(), data_.get(), written);
    }
    data_ = std::move(grown);
    capacity_ = capacity;
    if (appending_) {
        spare_ = data_.get() + written;
        spareEnd_ = data_.get() + capacity_;
    }
    adviseHugePages(data_.get(), capacity_);
}

void MemBinaryFileW::stopAppending() {
    if (appending_) {
        size_ = used();
        position_ = size_ + lastingBytes_;
        appending_ = false;
        spare_ = spareEnd_ = nullptr;
    }
}

void MemBinaryFileW::startAppending() {
    appending_ = true;
    spare_ = data_.get() + size_;
    spareEnd_ = data_.get() + capacity_;
}

void MemBinaryFileW::takeInLasting() {
    if (lasting_.empty()) {
        return;
    }
    // The places of deferred ordinals move with the bytes behind them: fill them first.
    resolveStrings();
    const std::size_t total = size_ + lastingBytes_;
    auto joined = std::make_unique_for_overwrite<unsigned char[]>(std::max(total, capacity_));
    std::size_t from = 0;
    unsigned char* to = joined.get();
    for (const Lasting& block : lasting_) {
        to = std::copy(data_.get() + from, data_.get() + block.at, to);
        to = std::copy(block.data, block.data + block.size, to);
        from = block.at;
    }
    std::copy(data_.get() + from, data_.get() + size_, to);
    data_ = std::move(joined);
    capacity_ = std::max(total, capacity_);
    size_ = total;
    lasting_.clear();
    lastingBytes_ = 0;
}

void MemBinaryFileW::seek(std::uint64_t position) {
    if (position == tell()) {
        return;
    }
    stopAppending();
    takeInLasting();
    position_ = position;
    if (position_ == size_) {
        startAppending();
    }
}

std::size_t MemBinaryFileW::put(const void* data, std::size_t size) {
    if (appending_) {
        if (size == 0) {
            return 0;
        }
        // Past the spare room: grow the block and copy.
        growTo(used() + size);
        std::memcpy(spare_, data, size);
        spare_ += size;
        return size;
    }
    // An insert in front of written bytes; the kept blocks were taken in when the cursor left the
    // end.
    if (position_ < size_ && !pending_.empty()) {
        // An insert would move the places of deferred ordinals: fill them first.
        resolveStrings();
    }
    if (position_ > size_) {
        // A cursor past the end has no bytes to insert before: the file grows with zeros up to it.
        growTo(position_);
        std::memset(data_.get() + size_, 0, position_ - size_);
        size_ = position_;
    }
    if (size == 0) {
        return 0;
    }
    growTo(size_ + size);
    unsigned char* at = data_.get() + position_;
    std::memmove(at + size, at, size_ - position_);
    std::memcpy(at, data, size);
    size_ += size;
    position_ += size;
    if (position_ == size_) {
        startAppending();
    }
    return size;
}

void MemBinaryFileW::writeLasting(const void* data, std::size_t size) {
    if (!appending_ || size < kLastingMin) {
        write(data, size);
        return;
    }
    lasting_.push_back(Lasting{used(), static_cast<const unsigned char*>(data), size});
    lastingBytes_ += size;
}

std::vector<std::span<const unsigned char>> MemBinaryFileW::pieces(std::size_t position) const {
    std::vector<std::span<const unsigned char>> out;
    std::size_t from = position;
    for (const Lasting& block : lasting_) {
        if (block.at > from) {
            out.emplace_back(data_.get() + from, block.at - from);
        }
        out.emplace_back(block.data, block.size);
        from = block.at;
    }
    if (used() > from) {
        out.emplace_back(data_.get() + from, used() - from);
    }
    return out;
}

void MemBinaryFileW::patchU32(std::uint64_t position, std::uint32_t value) {
    // A position counts the kept blocks in front of it; the buffer does not hold them.
    std::uint64_t shift = 0;
    for (const Lasting& block : lasting_) {
        const std::uint64_t start = block.at + shift;
        if (position + 4 <= start) {
            break;
        }
        if (position < start + block.size) {
            throw std::logic_error("patch inside a block kept by pointer");
        }
        shift += block.size;
    }
    const std::uint64_t at = position - shift;
    if (at + 4 > used()) {
        throw std::out_of_range("patch past the bytes written");
    }
    io::storeU32(data_.get() + at, value);
}

void MemBinaryFileW::placeString(std::string_view text, std::size_t at) {
    RecentText& recent = recentSlot(text.data());
    if (recent.data == text.data() && recent.size == text.size() && !text.empty() &&
        std::memcmp(strings_.index()[recent.ordinal], text.data(), text.size()) == 0) {
        // A text that already has its ordinal: deferred texts before it cannot change that.
        io::storeU32(data_.get() + at, recent.ordinal);
        return;
    }
    if (!deferStrings_) {
        // Earlier texts take their ordinals first, so the order of first use stays.
        resolveStrings();
        recent = RecentText{text.data(), text.size(), strings_.internOrdinal(text)};
        io::storeU32(data_.get() + at, recent.ordinal);
        return;
    }
    const std::uint64_t hash = StringPool::hashOf(text);
    io::storeU32(data_.get() + at, 0);
    pending_.push_back(PendingString{at, hash, text.data(), pendingText_.size(), text.size()});
    pendingText_.insert(pendingText_.end(), text.begin(), text.end());
    if (pending_.size() == kStringBatch) {
        resolveStrings();
    }
}

void MemBinaryFileW::writeString(std::string_view text) {
    text = text.substr(0, text.find('\0'));
    if (!appending_) {
        // An insert: the text gets its ordinal now, after every text written before it.
        resolveStrings();
        RecentText& recent = recentSlot(text.data());
        recent = RecentText{text.data(), text.size(), strings_.internOrdinal(text)};
        writeU32(recent.ordinal);
        return;
    }
    if (spareEnd_ - spare_ < 4) {
        growTo(used() + 4);
    }
    const std::size_t at = used();
    spare_ += 4;
    placeString(text, at);
}

void MemBinaryFileW::writeNamedValue(std::string_view className, std::string_view name, const void* value,
                                     std::size_t size) {
    if (!appending_) {
        IBinaryFileW::writeNamedValue(className, name, value, size);
        return;
    }
    const std::size_t need = 8 + size;
    if (static_cast<std::size_t>(spareEnd_ - spare_) < need) {
        growTo(used() + need);
    }
    const std::size_t at = used();
    spare_ += need;
    if (size != 0) {
        std::memcpy(data_.get() + at + 8, value, size);
    }
    placeString(className.substr(0, className.find('\0')), at);
    placeString(name.substr(0, name.find('\0')), at + 4);
}

void MemBinaryFileW::resolveStrings() {
    // The look-ahead prefetch is issued inside the loop that does the lookups: a loop of prefetches
    // alone has no effect the compiler must keep, and it deletes it. The first few lookups of a
    // batch wait for memory.
    for (std::size_t i = 0; i < pending_.size(); ++i) {
        if (i + kFetchAhead < pending_.size()) {
            strings_.prefetch(pending_[i + kFetchAhead].hash);
        }
        const PendingString& p = pending_[i];
        const std::uint32_t ordinal =
            strings_.internOrdinal(std::string_view(pendingText_.data() + p.textAt, p.length), p.hash);
        io::storeU32(data_.get() + p.position, ordinal);
        recentSlot(p.data) = RecentText{p.data, p.length, ordinal};
    }
    pending_.clear();
    pendingText_.clear();
}

}  // namespace model
