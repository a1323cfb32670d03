#pragma once
// Helpers for reading back written files in tests: a little-endian cursor with the string
// table resolved, and a builder of expected bytes.

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace testio {

struct Bytes {
    std::vector<unsigned char> data;

    Bytes& u8(std::uint8_t v) {
        data.push_back(v);
        return *this;
    }
    Bytes& u16(std::uint16_t v) { return u8(v & 0xFF).u8(v >> 8); }
    Bytes& u32(std::uint32_t v) {
        for (int i = 0; i < 4; ++i) {
            u8(static_cast<std::uint8_t>(v >> (8 * i)));
        }
        return *this;
    }
    Bytes& u64(std::uint64_t v) {
        for (int i = 0; i < 8; ++i) {
            u8(static_cast<std::uint8_t>(v >> (8 * i)));
        }
        return *this;
    }
    Bytes& f32(float v) { return u32(std::bit_cast<std::uint32_t>(v)); }
    Bytes& f64(double v) { return u64(std::bit_cast<std::uint64_t>(v)); }
    Bytes& raw(const std::string& s) {
        data.insert(data.end(), s.begin(), s.end());
        return *this;
    }
    // A node's inline name: u32 length and the bytes.
    Bytes& name(const std::string& s) { return u32(static_cast<std::uint32_t>(s.size())).raw(s); }
};

// A whole version 10 file: header checked, string table split, cursor behind the reserved word.
struct FileCursor {
    std::vector<unsigned char> bytes;
    std::vector<std::string> strings;
    std::size_t at = 0;

    explicit FileCursor(std::vector<unsigned char> file) : bytes(std::move(file)) {
        EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + 3), "NQF");
        at = 3;
        EXPECT_EQ(u16(), 10);
        std::uint32_t size = u32();
        std::size_t end = at + size;
        std::string current;
        for (; at < end; ++at) {
            if (bytes.at(at) == 0) {
                strings.push_back(current);
                current.clear();
            } else {
                current += static_cast<char>(bytes[at]);
            }
        }
        EXPECT_EQ(u64(), 0u) << "reserved word";
    }
    std::uint8_t u8() { return bytes.at(at++); }
    std::uint16_t u16() {
        std::uint16_t v = bytes.at(at) | (bytes.at(at + 1) << 8);
        at += 2;
        return v;
    }
    std::uint32_t u32() {
        std::uint32_t v = 0;
        for (int i = 0; i < 4; ++i) {
            v |= std::uint32_t(bytes.at(at + i)) << (8 * i);
        }
        at += 4;
        return v;
    }
    std::uint64_t u64() {
        std::uint64_t lo = u32();
        return lo | (std::uint64_t(u32()) << 32);
    }
    double f64() { return std::bit_cast<double>(u64()); }
    float f32() { return std::bit_cast<float>(u32()); }
    std::string str() { return strings.at(u32()); }
    std::string name() {
        std::uint32_t n = u32();
        std::string s(bytes.begin() + at, bytes.begin() + at + n);
        at += n;
        return s;
    }
    void skip(std::size_t n) { at += n; }
    bool atEnd() const { return at == bytes.size(); }
};

}  // namespace testio
