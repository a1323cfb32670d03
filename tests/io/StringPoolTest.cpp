#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <string>

#include "model/io/MemBinaryFileW.h"
#include "model/io/StringPool.h"

namespace {

using model::MemBinaryFileW;
using model::StringPool;

std::string bytesOf(const MemBinaryFileW& f) {
    return std::string(f.buffer().begin(), f.buffer().end());
}

TEST(MemBinaryFileW, WriteInsertsAtTheCursor) {
    MemBinaryFileW f;
    EXPECT_TRUE(f.isOpen());
    EXPECT_EQ(f.name(), "buffer");
    f.write("abcd", 4);
    EXPECT_EQ(f.tell(), 4u);
    f.seek(1);
    f.write("XY", 2);
    EXPECT_EQ(f.tell(), 3u);
    EXPECT_EQ(bytesOf(f), "aXYbcd");
    f.seek(6);
    f.writeU32(0x04030201);
    EXPECT_EQ(bytesOf(f), std::string("aXYbcd\x01\x02\x03\x04", 10));
    f.seek(0);
    f.writeU16(10);
    f.writeF32(1.0f);
    EXPECT_EQ(bytesOf(f).substr(0, 6), std::string("\x0a\x00\x00\x00\x80\x3f", 6));
}

TEST(MemBinaryFileW, WriteStringWritesTheOrdinalOfFirstUse) {
    MemBinaryFileW f;
    f.writeString("model::RootNode");
    f.writeString("NAME");
    f.writeString("model::RootNode");
    f.writeString(std::string_view("NAME\0tail", 9));  // only the text before the NUL counts
    EXPECT_EQ(bytesOf(f), std::string("\0\0\0\0\1\0\0\0\0\0\0\0\1\0\0\0", 16));
    std::vector<char> table = f.strings().flatten();
    EXPECT_EQ(std::string(table.begin(), table.end()), std::string("model::RootNode\0NAME\0", 21));
}

// The same characters at the same address are often the same constant, but a buffer may be
// reused for other text: the ordinal must follow the characters, never the address.
TEST(MemBinaryFileW, ReusedTextBufferWithNewCharactersIsANewString) {
    MemBinaryFileW f;
    std::string text = "model::Node";
    f.writeString(text);
    text[7] = 'M';
    f.writeString(text);
    text[7] = 'N';
    f.writeString(text);
    f.writeString(std::string_view(text).substr(0, 5));
    f.writeString(std::string_view());
    f.writeString("");
    EXPECT_EQ(bytesOf(f), std::string("\0\0\0\0\1\0\0\0\0\0\0\0\2\0\0\0\3\0\0\0\3\0\0\0", 24));
    std::vector<char> table = f.strings().flatten();
    EXPECT_EQ(std::string(table.begin(), table.end()),
              std::string("model::Node\0model::Mode\0model\0\0", 31));
}

// Deferred lookups must give the bytes and the table of immediate ones, whatever comes between
// them: inserts in front of deferred places, texts in reused buffers, batches filling up.
TEST(MemBinaryFileW, DeferredLookupsGiveTheBytesOfImmediateOnes) {
    std::mt19937 rng(5);
    auto pick = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); };
    for (int round = 0; round < 20; ++round) {
        MemBinaryFileW immediate;
        MemBinaryFileW deferred;
        deferred.deferStringLookups();
        std::string reused;
        for (int step = 0; step < 3000; ++step) {
            const int what = pick(20);
            if (what == 0) {
                // Seek back and insert, as a material's entry count does, then return to the end.
                const std::uint64_t end = immediate.tell();
                const std::uint64_t at = static_cast<std::uint64_t>(pick(static_cast<int>(end) + 1));
                for (MemBinaryFileW* f : {&immediate, &deferred}) {
                    f->seek(at);
                    f->writeU32(0xA5A5A5A5u);
                    f->seek(end + 4);
                }
            } else if (what < 8) {
                reused = "key" + std::to_string(pick(40));
                immediate.writeString(reused);
                deferred.writeString(reused);
            } else if (what < 12) {
                immediate.writeString("model::Node");
                deferred.writeString("model::Node");
            } else {
                const std::string fresh = "name" + std::to_string(pick(5000));
                immediate.writeString(fresh);
                deferred.writeString(fresh);
            }
        }
        deferred.resolveStrings();
        ASSERT_EQ(bytesOf(deferred), bytesOf(immediate)) << "round " << round;
        ASSERT_EQ(deferred.strings().flatten(), immediate.strings().flatten());
    }
}

TEST(StringPool, LongTextGetsAPageOfExactlyItsSizeAndTheNextStartsAnew) {
    StringPool pool(4096);
    pool.intern("short");
    std::string longText(5000, 'x');
    pool.intern(longText);
    pool.intern("after");
    ASSERT_EQ(pool.pages().size(), 3u);
    EXPECT_EQ(pool.pages()[0].bytes.size(), 4096u);
    EXPECT_EQ(pool.pages()[1].bytes.size(), 5001u);
    EXPECT_EQ(pool.pages()[1].used, 5001u);
    EXPECT_EQ(pool.pages()[2].count, 1u);
    std::vector<char> table = pool.flatten();
    EXPECT_EQ(std::string(table.begin(), table.end()),
              std::string("short\0", 6) + longText + '\0' + std::string("after\0", 6));
}

TEST(StringPool, TextThatFillsAPageExactlyStaysOnIt) {
    StringPool pool(8);
    pool.intern("abc");       // 4 bytes
    pool.intern("def");       // 4 bytes: the page is now full
    pool.intern("g");         // new page
    pool.intern("abcdefgh");  // 9 bytes > page: a page of its own
    ASSERT_EQ(pool.pages().size(), 3u);
    EXPECT_EQ(pool.pages()[0].used, 8u);
    EXPECT_EQ(pool.pages()[0].count, 2u);
    EXPECT_EQ(pool.pages()[2].bytes.size(), 9u);
    EXPECT_EQ(pool.ordinal("abcdefgh"), 3u);
    EXPECT_EQ(pool.ordinal("missing"), 0xFFFFFFFFu);
}

// Texts with running numbers, the empty text among them, each asked for again later: the index
// grows many times over and must still find every one, and the table size it keeps must be the
// flattened table's.
TEST(StringPool, OrdinalsSurviveTheIndexGrowing) {
    StringPool pool;
    EXPECT_EQ(pool.ordinal("anything"), 0xFFFFFFFFu);
    EXPECT_EQ(pool.tableSize(), 0u);
    // Sized too small at first, then sized again while full: neither may lose a text.
    pool.reserve(100);
    // Enough texts for the index to outgrow a huge page, so large blocks are made and freed too.
    const std::uint32_t count = 70000;
    for (std::uint32_t i = 0; i < count; ++i) {
        ASSERT_EQ(pool.internOrdinal("name" + std::to_string(i)), i);
        if (i == count / 2) {
            pool.reserve(count);
        }
    }
    EXPECT_EQ(pool.internOrdinal(""), count);
    for (std::uint32_t i = 0; i < count; i += 7) {
        ASSERT_EQ(pool.internOrdinal("name" + std::to_string(i)), i);
    }
    EXPECT_EQ(pool.internOrdinal(std::string_view()), count);
    EXPECT_EQ(pool.ordinal("name" + std::to_string(count)), 0xFFFFFFFFu);
    EXPECT_EQ(pool.index().size(), count + 1);
    EXPECT_EQ(pool.tableSize(), pool.flatten().size());
}

// The indexed lookup must give the ordinals a linear scan of the stored strings would.
TEST(StringPool, IndexedInternMatchesLinearSearch) {
    std::mt19937 rng(7);
    for (int round = 0; round < 100; ++round) {
        StringPool pool(std::uniform_int_distribution<int>(4, 64)(rng));
        std::vector<std::string> reference;
        for (int i = 0; i < 300; ++i) {
            std::string text;
            int len = std::uniform_int_distribution<int>(0, 80)(rng);
            for (int k = 0; k < len; ++k) {
                text += static_cast<char>('a' + std::uniform_int_distribution<int>(0, 2)(rng));
            }
            pool.intern(text);
            auto found = std::find(reference.begin(), reference.end(), text);
            const auto expected = static_cast<std::uint32_t>(found - reference.begin());
            if (found == reference.end()) {
                reference.push_back(text);
            }
            ASSERT_EQ(pool.ordinal(text), expected);
            ASSERT_STREQ(pool.index()[expected], text.c_str());
        }
        std::string joined;
        for (const auto& s : reference) {
            joined += s;
            joined += '\0';
        }
        std::vector<char> table = pool.flatten();
        ASSERT_EQ(std::string(table.begin(), table.end()), joined);
    }
}

}  // namespace
