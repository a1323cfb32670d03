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

    // From now on a writeString at the end of the buffer whose text is not among the recent ones
    // writes four bytes at once and gets its ordinal in a batch with others: the index slots of a
    // batch are fetched ahead of their lookups, so that the waits for memory of many new strings
    // overlap. The batch is looked up in the order of writing, so ordinals and the table come out
    // as without deferral.
    void deferStringLookups() { deferStrings_ = true; }
    // Fills every deferred ordinal now. buffer() and strings() are complete only after this.
    void resolveStrings();

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
    RecentText& recentSlot(const char* data) {
        return recent_[(reinterpret_cast<std::uintptr_t>(data) >> 3) % recent_.size()];
    }

    // A deferred writeString: where its ordinal goes, and its text in `pendingText_`. `data` is
    // where the caller's text stood, kept only as a key of the recent texts.
    struct PendingString {
        std::uint64_t position;
        std::uint64_t hash;
        const char* data;
        std::size_t textAt;
        std::size_t length;
    };
    bool deferStrings_ = false;
    std::vector<PendingString> pending_;
    std::vector<char> pendingText_;
};

}  // namespace model
