#pragma once
// UTF-8 text helpers.

#include <string>
#include <string_view>

namespace nq {

// Lower-cases UTF-8 text code point by code point with the Unicode simple case mapping of the
// C.UTF-8 locale (so "ÄB" becomes "äb", not only ASCII). Bytes that are not valid UTF-8 are kept
// as they are.
std::string utf8ToLower(std::string_view text);

// True when the text is well-formed UTF-8 (no overlong forms, no surrogates, at most U+10FFFF).
bool isValidUtf8(std::string_view text);

}  // namespace nq
