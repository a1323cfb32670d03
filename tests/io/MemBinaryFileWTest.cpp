// The memory sink's quick paths (copies into spare room, a property record in one call, large
// blocks kept by pointer) against a plain model of what it stands for: a byte array written by
// insertion at the cursor, with strings numbered in order of first use.

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/io/MemBinaryFileW.h"

namespace {

using model::MemBinaryFileW;
using Bytes = std::vector<unsigned char>;

struct PlainFile {
    Bytes bytes;
    std::size_t position = 0;
    std::map<std::string, std::uint32_t> ordinals;
    std::string table;

    void write(const void* data, std::size_t size) {
        const auto* p = static_cast<const unsigned char*>(data);
        if (position > bytes.size()) {
            bytes.resize(position, 0);
        }
        bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(position), p, p + size);
        position += size;
    }
    void writeU32(std::uint32_t v) {
        unsigned char b[4] = {static_cast<unsigned char>(v), static_cast<unsigned char>(v >> 8),
                              static_cast<unsigned char>(v >> 16), static_cast<unsigned char>(v >> 24)};
        write(b, 4);
    }
    void writeString(const std::string& text) {
        auto [it, fresh] = ordinals.emplace(text, static_cast<std::uint32_t>(ordinals.size()));
        if (fresh) {
            table += text;
            table += '\0';
        }
        writeU32(it->second);
    }
    void patchU32(std::size_t at, std::uint32_t v) {
        for (int i = 0; i < 4; ++i) {
            bytes[at + static_cast<std::size_t>(i)] = static_cast<unsigned char>(v >> (8 * i));
        }
    }
};

Bytes joined(const MemBinaryFileW& file) {
    Bytes out;
    for (std::span<const unsigned char> piece : file.pieces(0)) {
        out.insert(out.end(), piece.begin(), piece.end());
    }
    return out;
}

TEST(MemBinaryFileW, QuickPathsGiveTheBytesOfPlainInsertion) {
    std::mt19937 rng(17);
    auto pick = [&](std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(rng); };
    // Blocks kept by pointer must stay unchanged until the pieces are read: they live here.
    std::vector<Bytes> blocks(40);
    for (std::size_t b = 0; b < blocks.size(); ++b) {
        blocks[b].resize(b % 2 == 0 ? MemBinaryFileW::kLastingMin + pick(3000) : 1 + pick(70000));
        for (unsigned char& x : blocks[b]) {
            x = static_cast<unsigned char>(pick(256));
        }
    }
    const std::string className = "model::Property<float>";
    for (int round = 0; round < 12; ++round) {
        MemBinaryFileW file;
        if (round % 2 == 0) {
            file.deferStringLookups();
        }
        PlainFile plain;
        std::vector<std::size_t> patchable;  // places of u32 written, as tell() gave them
        for (int step = 0; step < 1500; ++step) {
            const std::size_t what = pick(100);
            if (what < 2) {
                const Bytes& block = blocks[pick(blocks.size())];
                file.writeLasting(block.data(), block.size());
                plain.write(block.data(), block.size());
            } else if (what < 4) {
                // Back into the written bytes and out again, as a material's entry count does;
                // sometimes past the end, which fills with zeros.
                const std::size_t end = plain.bytes.size();
                const std::size_t at = what == 2 ? pick(end + 1) : end + 1 + pick(9);
                file.seek(at);
                plain.position = at;
                ASSERT_EQ(file.tell(), at);
                file.writeU32(0xA5A5A5A5u);
                plain.writeU32(0xA5A5A5A5u);
                file.seek(plain.bytes.size());
                plain.position = plain.bytes.size();
                patchable.clear();  // an insert moves the places behind it
            } else if (what < 6 && !patchable.empty()) {
                const std::size_t at = patchable[pick(patchable.size())];
                file.patchU32(at, static_cast<std::uint32_t>(step));
                plain.patchU32(at, static_cast<std::uint32_t>(step));
            } else if (what < 40) {
                const std::string name = "p" + std::to_string(pick(3000));
                const float value = float(step);
                file.writeNamedValue(className, name, &value, sizeof value);
                plain.writeString(className);
                plain.writeString(name);
                plain.write(&value, sizeof value);
            } else if (what < 60) {
                const std::string text = "name" + std::to_string(pick(2000));
                file.writeString(text);
                plain.writeString(text);
            } else if (what < 62) {
                // Larger than the spare room at times: the block grows under the cursor.
                const Bytes& block = blocks[1 + 2 * pick(blocks.size() / 2)];
                file.write(block.data(), block.size());
                plain.write(block.data(), block.size());
            } else {
                patchable.push_back(plain.bytes.size());
                const auto v = static_cast<std::uint32_t>(rng());
                file.writeU32(v);
                plain.writeU32(v);
            }
            ASSERT_EQ(file.tell(), plain.position) << "round " << round << ", step " << step;
        }
        file.resolveStrings();
        ASSERT_EQ(joined(file), plain.bytes) << "round " << round;
        const std::vector<char> table = file.strings().flatten();
        ASSERT_EQ(std::string(table.begin(), table.end()), plain.table) << "round " << round;
    }
}

TEST(MemBinaryFileW, LargeBlockAtTheEndIsKeptByPointerAndPatchesSkipIt) {
    MemBinaryFileW file;
    file.writeU32(1);
    const Bytes block(MemBinaryFileW::kLastingMin, 7);
    file.writeLasting(block.data(), block.size());
    file.writeU32(2);
    const auto pieces = file.pieces(0);
    ASSERT_EQ(pieces.size(), 3u);
    EXPECT_EQ(pieces[1].data(), block.data());
    EXPECT_EQ(file.buffer().size(), 8u);
    EXPECT_EQ(file.tell(), block.size() + 8);

    file.patchU32(block.size() + 4, 0x01020304u);
    EXPECT_EQ(file.buffer()[4], 0x04);
    EXPECT_THROW(file.patchU32(2, 0), std::logic_error);
    EXPECT_THROW(file.patchU32(block.size() + 8, 0), std::out_of_range);

    // Leaving the end takes the block into the buffer: an insert never lands among kept blocks.
    file.seek(0);
    file.writeU32(0);
    EXPECT_EQ(file.pieces(0).size(), 1u);
    EXPECT_EQ(file.buffer().size(), block.size() + 12);
    EXPECT_EQ(file.buffer()[8], 7);
}

}  // namespace
