#pragma once
// A byte sink over a vector for byte-exact tests, and a builder for the expected bytes.

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "model/io/IBinaryFileW.h"

namespace testing_support {

using Bytes = std::vector<std::uint8_t>;

class ByteSink : public io::IBinaryFileW {
public:
    bool isOpen() const override { return true; }
    std::size_t write(const void* data, std::size_t size) override {
        const auto* p = static_cast<const std::uint8_t*>(data);
        bytes.insert(bytes.end(), p, p + size);
        return size;
    }
    void seek(std::uint64_t) override {}
    std::uint64_t tell() const override { return bytes.size(); }
    std::string name() const override { return "test sink"; }

    Bytes bytes;
};

// Little-endian expected bytes, written independently of IBinaryFileW.
class Expect {
public:
    Expect& u8(std::uint8_t v) {
        bytes.push_back(v);
        return *this;
    }
    Expect& u16(std::uint16_t v) { return le(v, 2); }
    Expect& u32(std::uint32_t v) { return le(v, 4); }
    Expect& f32(float v) { return le(std::bit_cast<std::uint32_t>(v), 4); }
    Expect& f64(double v) { return le(std::bit_cast<std::uint64_t>(v), 8); }
    // The base string form: u32 length, then the bytes.
    Expect& str(std::string_view s) {
        u32(static_cast<std::uint32_t>(s.size()));
        bytes.insert(bytes.end(), s.begin(), s.end());
        return *this;
    }

    Bytes bytes;

private:
    Expect& le(std::uint64_t v, int n) {
        for (int i = 0; i < n; ++i) {
            bytes.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
        }
        return *this;
    }
};

}  // namespace testing_support
