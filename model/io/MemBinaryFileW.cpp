#include "model/io/MemBinaryFileW.h"

namespace model {

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
    writeU32(strings_.internOrdinal(text));
}

}  // namespace model
