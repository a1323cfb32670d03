#pragma once
// A byte sink over a vector for byte-exact tests, and the builder for the expected bytes.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "io/NqfBytes.h"
#include "model/io/IBinaryFileW.h"

namespace testing_support {

using Bytes = std::vector<std::uint8_t>;

class ByteSink : public io::IBinaryFileW {
public:
    bool isOpen() const override { return true; }
    std::size_t put(const void* data, std::size_t size) override {
        const auto* p = static_cast<const std::uint8_t*>(data);
        bytes.insert(bytes.end(), p, p + size);
        return size;
    }
    void seek(std::uint64_t) override {}
    std::uint64_t tell() const override { return bytes.size(); }
    std::string name() const override { return "test sink"; }

    Bytes bytes;
};

// Expected bytes are built with the little-endian builder of the file tests; its text() is the
// base string form (u32 length, then the bytes).
using Expect = nqftest::NqfBytes;

}  // namespace testing_support
