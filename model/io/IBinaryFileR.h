#pragma once
// The abstract byte source: the mirror of IBinaryFileW. Every read is bounds-checked: a read
// past the end throws instead of returning short data.

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

#include "core/ExtException.h"
#include "core/Math.h"

namespace io {

class IBinaryFileR {
public:
    virtual ~IBinaryFileR() = default;
    virtual bool isOpen() const = 0;
    // Reads up to size bytes at the cursor; returns the number read.
    virtual std::size_t read(void* data, std::size_t size) = 0;
    virtual void seek(std::uint64_t position) = 0;
    virtual std::uint64_t tell() const = 0;
    virtual std::string name() const = 0;
    // Total length of the source in bytes.
    virtual std::uint64_t size() const = 0;
    // The base form mirrors IBinaryFileW::writeString: a u32 length, then the bytes.
    virtual std::string readString() {
        std::string text(readU32(), '\0');
        readExact(text.data(), text.size());
        return text;
    }

    std::uint64_t remaining() const {
        std::uint64_t at = tell();
        std::uint64_t total = size();
        return at < total ? total - at : 0;
    }

    // Reads exactly size bytes or throws, naming the source and the position.
    void readExact(void* data, std::size_t size) {
        std::uint64_t at = tell();
        if (read(data, size) != size) {
            throw nq::ExtException("Unexpected end of " + name() + ": " + std::to_string(size) +
                                   " bytes needed at offset " + std::to_string(at) + ".");
        }
    }

    std::uint8_t readU8() {
        std::uint8_t v;
        readExact(&v, 1);
        return v;
    }
    std::uint16_t readU16() { return static_cast<std::uint16_t>(readLittle(2)); }
    std::uint32_t readU32() { return static_cast<std::uint32_t>(readLittle(4)); }
    std::uint64_t readU64() { return readLittle(8); }
    float readF32() { return std::bit_cast<float>(readU32()); }
    double readF64() { return std::bit_cast<double>(readU64()); }

    void readBlock(osg::Vec2f& v) { readExact(v.v, 8); }
    void readBlock(osg::Vec3f& v) { readExact(v.v, 12); }
    void readBlock(osg::Vec4f& v) { readExact(v.v, 16); }
    void readBlock(nq::Vec3d& v) { readExact(v.v, 24); }
    void readBlock(nq::Vec4d& v) { readExact(v.v, 32); }
    void readBlock(nq::Quatd& v) { readExact(v.v, 32); }
    void readBlock(nq::Matrixf& v) { readExact(v.m.data(), 64); }
    void readBlock(nq::Matrixd& v) { readExact(v.m.data(), 128); }

private:
    std::uint64_t readLittle(int bytes) {
        unsigned char b[8];
        readExact(b, static_cast<std::size_t>(bytes));
        std::uint64_t v = 0;
        for (int i = bytes - 1; i >= 0; --i) {
            v = (v << 8) | b[i];
        }
        return v;
    }
};

// A byte source over memory that the caller keeps alive.
class MemBinaryFileR : public IBinaryFileR {
public:
    explicit MemBinaryFileR(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    bool isOpen() const override { return true; }
    std::size_t read(void* data, std::size_t size) override {
        std::size_t available = position_ < bytes_.size() ? bytes_.size() - position_ : 0;
        std::size_t n = size < available ? size : available;
        if (n > 0) {
            std::memcpy(data, bytes_.data() + position_, n);
        }
        position_ += n;
        return n;
    }
    void seek(std::uint64_t position) override { position_ = position; }
    std::uint64_t tell() const override { return position_; }
    std::string name() const override { return "buffer"; }
    std::uint64_t size() const override { return bytes_.size(); }

private:
    std::span<const std::uint8_t> bytes_;
    std::uint64_t position_ = 0;
};

}  // namespace io
