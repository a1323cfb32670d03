#pragma once
// A read position in a byte buffer that never moves past its end: take(n) hands out the next n
// bytes only when that many remain. Values are decoded little-endian whatever the host's order.

#include <bit>
#include <cstddef>
#include <cstdint>

namespace model::io {

class ByteCursor {
public:
    ByteCursor(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    std::size_t offset() const { return offset_; }
    std::size_t size() const { return size_; }
    std::size_t remaining() const { return size_ - offset_; }

    // The next n bytes, and the cursor moves past them; null (and no move) when fewer remain.
    const std::uint8_t* take(std::size_t n) {
        if (n > remaining()) {
            return nullptr;
        }
        const std::uint8_t* p = data_ + offset_;
        offset_ += n;
        return p;
    }

    static std::uint16_t loadU16(const std::uint8_t* p) {
        return static_cast<std::uint16_t>(p[0] | (p[1] << 8));
    }
    static std::uint32_t loadU32(const std::uint8_t* p) {
        return static_cast<std::uint32_t>(p[0]) | (static_cast<std::uint32_t>(p[1]) << 8) |
               (static_cast<std::uint32_t>(p[2]) << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
    }
    static std::uint64_t loadU64(const std::uint8_t* p) {
        return static_cast<std::uint64_t>(loadU32(p)) | (static_cast<std::uint64_t>(loadU32(p + 4)) << 32);
    }
    static float loadF32(const std::uint8_t* p) { return std::bit_cast<float>(loadU32(p)); }
    static double loadF64(const std::uint8_t* p) { return std::bit_cast<double>(loadU64(p)); }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t offset_ = 0;
};

}  // namespace model::io
