#include <gtest/gtest.h>

#include "core/Utf8.h"

namespace {

TEST(Utf8, LowersBeyondAsciiAndKeepsInvalidBytes) {
    EXPECT_EQ(nq::utf8ToLower("Textures/WALL.DDS"), "textures/wall.dds");
    EXPECT_EQ(nq::utf8ToLower("\xC3\x84\xC3\x96\xC3\x9C"), "\xC3\xA4\xC3\xB6\xC3\xBC");  // ÄÖÜ -> äöü
    EXPECT_EQ(nq::utf8ToLower("\xD0\x9F\xD0\xA0\xD0\x98"), "\xD0\xBF\xD1\x80\xD0\xB8");  // ПРИ -> при
    EXPECT_EQ(nq::utf8ToLower(std::string("A\xFF") + "B\xC3"), std::string("a\xFF") + "b\xC3");
    EXPECT_EQ(nq::utf8ToLower(""), "");
}

TEST(Utf8, ValidityRejectsOverlongSurrogatesAndTruncation) {
    EXPECT_TRUE(nq::isValidUtf8("plain \xE2\x82\xAC \xF0\x9F\x98\x80"));
    EXPECT_FALSE(nq::isValidUtf8("\xC0\xAF"));          // overlong '/'
    EXPECT_FALSE(nq::isValidUtf8("\xED\xA0\x80"));      // surrogate
    EXPECT_FALSE(nq::isValidUtf8("\xE2\x82"));          // cut short
    EXPECT_FALSE(nq::isValidUtf8("\xF4\x90\x80\x80"));  // above U+10FFFF
    EXPECT_EQ(nq::invalidUtf8At("ab\xE2\x82\xAC\xE2\x82"), 5u);
    EXPECT_EQ(nq::invalidUtf8At("ab"), std::string_view::npos);
}

TEST(Utf8, WideConversionGoesBothWaysAndReplacesMalformedBytes) {
    const std::string text = "a\xC3\xA9\xE6\x97\xA5\xF0\x9F\x98\x80";  // a, e-acute, a CJK sign, an emoji
    std::wstring wide = nq::utf8ToWide(text);
    EXPECT_EQ(wide, std::wstring(L"a\u00E9\u65E5\U0001F600"));
    EXPECT_EQ(nq::wideToUtf8(wide), text);
    // A lone continuation byte, an overlong form, an encoded surrogate and a truncated sequence.
    EXPECT_EQ(nq::utf8ToWide("\x80x\xC0\xAFy\xED\xA0\x80z\xE6\x97"),
              std::wstring(L"\uFFFDx\uFFFD\uFFFDy\uFFFD\uFFFD\uFFFDz\uFFFD\uFFFD"));
}

TEST(Utf8, PrefixNeverEndsInsideACharacter) {
    const std::string text = std::string("ab\xE6\x97\xA5") + "c";
    const std::size_t expected[] = {0, 1, 2, 2, 2, 5, 6, 6};  // for limits 0 to 7
    for (std::size_t limit = 0; limit < 8; ++limit) {
        EXPECT_EQ(nq::utf8PrefixLength(text, limit), expected[limit]) << limit;
    }
}

}  // namespace
