#pragma once
// UTF-8 text helpers, and the conversion between UTF-8 and the host's wide text. Wide text holds
// one code point per wchar_t where wchar_t is 32 bits wide, and UTF-16 with surrogate pairs where
// it is 16 bits wide.

#include <cstddef>
#include <string>
#include <string_view>

namespace nq {

// Lower-cases UTF-8 text code point by code point with the Unicode simple case mapping of the
// C.UTF-8 locale (so "ÄB" becomes "äb", not only ASCII). Bytes that are not valid UTF-8 are kept
// as they are.
std::string utf8ToLower(std::string_view text);

// True when the text is well-formed UTF-8 (no overlong forms, no surrogates, at most U+10FFFF).
bool isValidUtf8(std::string_view text);
// The offset of the first byte of the first malformed sequence, or npos for well-formed text.
std::size_t invalidUtf8At(std::string_view text);

// Conversions that never fail: each byte that is not part of valid UTF-8, and each unpaired
// surrogate, becomes U+FFFD.
std::wstring utf8ToWide(std::string_view text);
std::string wideToUtf8(std::wstring_view text);

// The length of the longest prefix of text of at most maxBytes bytes that ends on a character
// boundary, so cutting text there never leaves half a character.
std::size_t utf8PrefixLength(std::string_view text, std::size_t maxBytes);

}  // namespace nq
