#pragma once
// The memory sink of the writer. Its write inserts at the cursor rather than overwriting:
// seeking back and writing makes room, which is how the string table and the material entry
// counts get in front of data written before them.

#include <array>
#include <cstdint>
#include <vector>

#include "model/io/IBinaryFileW.h"
#include "model/io/StringPool.h"

namespace model {

class MemBinaryFileW : public io::IBinaryFileW {
public:
    MemBinaryFileW() { buffer_.reserve(4096); }

    bool isOpen() const override { return true; }
    std::size_t write(const void* data, std::size_t size) override;
    void seek(std::uint64_t position) override { position_ = position; }
    std::uint64_t tell() const override { return position_; }
    std::string name() const override { return "buffer"; }
    // Interns the text (up to its first NUL) and writes its ordinal as u32.
    void writeString(std::string_view text) override;

    // Makes room for a file of about `size` bytes at once, so that writing it never regrows the
    // buffer. A large buffer is backed by huge pages where the system offers them: its first
    // touch then costs one fault per 2 MiB rather than one per 4 KiB.
    void reserve(std::size_t size);

    const std::vector<unsigned char>& buffer() const { return buffer_; }
    std::vector<unsigned char>& buffer() { return buffer_; }
    StringPool& strings() { return strings_; }
    const StringPool& strings() const { return strings_; }

private:
    std::vector<unsigned char> buffer_;
    std::uint64_t position_ = 0;
    StringPool strings_{4096};

    // Texts written lately, by the address of their characters. Class names and keys come from
    // the same constant each time; a match is checked against the stored text (an address may
    // be reused for other characters) and saves the hash and the probe.
    struct RecentText {
        const char* data = nullptr;
        std::size_t size = 0;
        std::uint32_t ordinal = 0;
    };
    std::array<RecentText, 16> recent_{};
};

}  // namespace model
