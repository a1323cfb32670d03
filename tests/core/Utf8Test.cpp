#include <gtest/gtest.h>

#include "core/Utf8.h"

namespace {

TEST(Utf8, LowersBeyondAsciiAndKeepsInvalidBytes) {
    EXPECT_EQ(nq::utf8ToLower("Textures/WALL.DDS"), "textures/wall.dds");
    EXPECT_EQ(nq::utf8ToLower("\xC3\x84\xC3\x96\xC3\x9C"), "\xC3\xA4\xC3\xB6\xC3\xBC");  // ÄÖÜ -> äöü
    EXPECT_EQ(nq::utf8ToLower("\xD0\x9F\xD0\xA0\xD0\x98"), "\xD0\xBF\xD1\x80\xD0\xB8");  // ПРИ -> при
    EXPECT_EQ(nq::utf8ToLower(std::string("A\xFF"
                                          "B\xC3",
                                          4)),
              std::string("a\xFF"
                          "b\xC3",
                          4));
    EXPECT_EQ(nq::utf8ToLower(""), "");
}

TEST(Utf8, ValidityRejectsOverlongSurrogatesAndTruncation) {
    EXPECT_TRUE(nq::isValidUtf8("plain \xE2\x82\xAC \xF0\x9F\x98\x80"));
    EXPECT_FALSE(nq::isValidUtf8("\xC0\xAF"));          // overlong '/'
    EXPECT_FALSE(nq::isValidUtf8("\xED\xA0\x80"));      // surrogate
    EXPECT_FALSE(nq::isValidUtf8("\xE2\x82"));          // cut short
    EXPECT_FALSE(nq::isValidUtf8("\xF4\x90\x80\x80"));  // above U+10FFFF
}

}  // namespace
