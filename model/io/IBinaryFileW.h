#pragma once
// The abstract byte sink of the writer, with the little-endian primitive writers of the file.
//
// A sink that keeps its bytes in memory may offer spare room at its end: write() then copies into
// it inline, without a call into the sink. Every other write goes to the sink's put().

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "core/Math.h"

namespace io {

// Stores a 32-bit value at `at` in the file's little-endian order, over bytes written before.
inline void storeU32(unsigned char* at, std::uint32_t value) {
    for (int i = 0; i < 4; ++i) {
        at[i] = static_cast<unsigned char>(value >> (8 * i));
    }
}

static_assert(std::endian::native == std::endian::little,
              "block writers copy memory as it stands and need a little-endian host");

class IBinaryFileW {
public:
    virtual ~IBinaryFileW() = default;
    virtual bool isOpen() const = 0;
    // Writes size bytes at the cursor; returns the number written.
    std::size_t write(const void* data, std::size_t size) {
        // size - 1 wraps for 0, so an empty write (whose data may be null) takes the call.
        if (size - 1 < static_cast<std::size_t>(spareEnd_ - spare_)) {
            std::memcpy(spare_, data, size);
            spare_ += size;
            return size;
        }
        return put(data, size);
    }
    virtual void seek(std::uint64_t position) = 0;
    virtual std::uint64_t tell() const = 0;
    virtual std::string name() const = 0;
    // The base form: the length as u32, then the bytes, no terminator.
    virtual void writeString(std::string_view text) {
        writeU32(static_cast<std::uint32_t>(text.size()));
        write(text.data(), text.size());
    }
    // A property record's head and its value of fixed size: two strings, then the value's bytes.
    // A sink that interns its strings handles the three in one call.
    virtual void writeNamedValue(std::string_view className, std::string_view name, const void* value,
                                 std::size_t size) {
        writeString(className);
        writeString(name);
        write(value, size);
    }
    // Writes bytes that stay unchanged where they stand until the sink's output has been written
    // out: a sink may keep a pointer to a large block rather than copy it. By default, a copy.
    virtual void writeLasting(const void* data, std::size_t size) { write(data, size); }

    // Integers are composed by shifts so the file's order does not depend on the host's.
    void writeU8(std::uint8_t v) { write(&v, 1); }
    void writeU16(std::uint16_t v) {
        unsigned char b[2] = {static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8)};
        write(b, 2);
    }
    void writeU32(std::uint32_t v) {
        unsigned char b[4];
        storeU32(b, v);
        write(b, 4);
    }
    void writeU64(std::uint64_t v) {
        unsigned char b[8];
        for (int i = 0; i < 8; ++i) {
            b[i] = static_cast<unsigned char>(v >> (8 * i));
        }
        write(b, 8);
    }
    void writeF32(float v) { writeU32(std::bit_cast<std::uint32_t>(v)); }
    void writeF64(double v) { writeU64(std::bit_cast<std::uint64_t>(v)); }

    // Blocks copy the in-memory structure as it stands.
    void writeBlock(const osg::Vec2f& v) { write(v.v, 8); }
    void writeBlock(const osg::Vec3f& v) { write(v.v, 12); }
    void writeBlock(const osg::Vec4f& v) { write(v.v, 16); }
    void writeBlock(const nq::Vec3d& v) { write(v.v, 24); }
    void writeBlock(const nq::Vec4d& v) { write(v.v, 32); }
    void writeBlock(const nq::Quatd& v) { write(v.v, 32); }
    void writeBlock(const nq::Matrixf& v) { write(v.m.data(), 64); }
    void writeBlock(const nq::Matrixd& v) { write(v.m.data(), 128); }

protected:
    // Writes what write() could not copy into the spare room.
    virtual std::size_t put(const void* data, std::size_t size) = 0;

    // The spare room at the end of an in-memory sink, [spare_, spareEnd_), or empty. A sink that
    // offers it must count what write() copied there as written at its cursor.
    unsigned char* spare_ = nullptr;
    unsigned char* spareEnd_ = nullptr;
};

}  // namespace io
