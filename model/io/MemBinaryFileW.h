#pragma once
// The memory sink of the writer. Its write inserts at the cursor rather than overwriting:
// seeking back and writing makes room, which is how a material's entry count gets in front of
// the entries written before it.
//
// While the cursor stands at the end, the sink offers the rest of its block as spare room, so that
// most writes are an inline copy. A large block that outlives the sink's output (a mesh's vertex
// array) may be kept by pointer instead of copied: the output is then a list of pieces.

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "model/io/IBinaryFileW.h"
#include "model/io/StringPool.h"

namespace model {

class MemBinaryFileW : public io::IBinaryFileW {
public:
    MemBinaryFileW() {
        reserve(4096);
        startAppending();
    }
    MemBinaryFileW(const MemBinaryFileW&) = delete;
    MemBinaryFileW& operator=(const MemBinaryFileW&) = delete;

    bool isOpen() const override { return true; }
    // Moving the cursor anywhere but the end first copies the kept blocks into the buffer, so that
    // an insert never lands among them.
    void seek(std::uint64_t position) override;
    std::uint64_t tell() const override { return appending_ ? used() + lastingBytes_ : position_; }
    std::string name() const override { return "buffer"; }
    // Interns the text (up to its first NUL) and writes its ordinal as u32.
    void writeString(std::string_view text) override;
    void writeNamedValue(std::string_view className, std::string_view name, const void* value,
                         std::size_t size) override;
    // At the end of the buffer, a block of at least kLastingMin bytes is kept by pointer; the
    // caller keeps it unchanged until the pieces have been written out.
    void writeLasting(const void* data, std::size_t size) override;
    static constexpr std::size_t kLastingMin = 64 * 1024;

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
    // Fills every deferred ordinal now. The bytes and strings() are complete only after this.
    void resolveStrings();

    // The bytes written into the buffer itself, without the blocks kept by pointer.
    std::span<const unsigned char> buffer() const { return {data_.get(), used()}; }
    // Everything from `position` on, in order: stretches of the buffer and the kept blocks.
    // `position` lies before the first kept block.
    std::vector<std::span<const unsigned char>> pieces(std::size_t position) const;
    // Overwrites four bytes written before, at a position as tell() gave it.
    void patchU32(std::uint64_t position, std::uint32_t value);
    StringPool& strings() { return strings_; }
    const StringPool& strings() const { return strings_; }

protected:
    std::size_t put(const void* data, std::size_t size) override;

private:
    std::size_t used() const { return appending_ ? static_cast<std::size_t>(spare_ - data_.get()) : size_; }
    // Where the buffer stops offering spare room, and where it starts again.
    void stopAppending();
    void startAppending();
    // Grows the block to hold at least `size` bytes, keeping what was written.
    void growTo(std::size_t size);
    // Copies the kept blocks into the buffer, where they belong.
    void takeInLasting();
    // Writes the ordinal of text at `at` in the buffer, or a placeholder filled by resolveStrings.
    void placeString(std::string_view text, std::size_t at);

    std::unique_ptr<unsigned char[]> data_;
    std::size_t capacity_ = 0;
    // The bytes written, while not appending; while appending, spare_ marks the end.
    std::size_t size_ = 0;
    bool appending_ = false;
    std::uint64_t position_ = 0;
    StringPool strings_{4096};

    // A block kept by pointer, standing in front of the buffer's byte `at`.
    struct Lasting {
        std::size_t at;
        const unsigned char* data;
        std::size_t size;
    };
    std::vector<Lasting> lasting_;
    std::size_t lastingBytes_ = 0;

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
