#include "core/Utf8.h"

#include <cwctype>
#include <locale>

namespace nq {
namespace {

// Decodes one code point at text[i]; returns its length, or 0 when the bytes are not valid UTF-8.
std::size_t decode(std::string_view text, std::size_t i, char32_t& cp) {
    auto byte = [&](std::size_t k) { return static_cast<unsigned char>(text[k]); };
    unsigned char b0 = byte(i);
    std::size_t len = b0 < 0x80 ? 1 : (b0 >> 5) == 6 ? 2 : (b0 >> 4) == 14 ? 3 : (b0 >> 3) == 30 ? 4 : 0;
    if (len == 0 || i + len > text.size()) {
        return 0;
    }
    if (len == 1) {
        cp = b0;
        return 1;
    }
    cp = b0 & (0x7F >> len);
    for (std::size_t k = 1; k < len; ++k) {
        if ((byte(i + k) & 0xC0) != 0x80) {
            return 0;
        }
        cp = (cp << 6) | (byte(i + k) & 0x3F);
    }
    static constexpr char32_t kMin[5] = {0, 0, 0x80, 0x800, 0x10000};
    if (cp < kMin[len] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        return 0;
    }
    return len;
}

void encode(char32_t cp, std::string& out) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

const std::ctype<wchar_t>* unicodeCtype() {
    // C.UTF-8 is built into the C library; without it the mapping falls back to ASCII.
    static const std::ctype<wchar_t>* facet = []() -> const std::ctype<wchar_t>* {
        try {
            static const std::locale loc("C.UTF-8");
            return &std::use_facet<std::ctype<wchar_t>>(loc);
        } catch (const std::exception&) {
            return nullptr;
        }
    }();
    return facet;
}

constexpr char32_t kReplacement = 0xFFFD;

bool isContinuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

void appendWide(std::wstring& out, char32_t cp) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out += static_cast<wchar_t>(0xD800 + (cp >> 10));
            out += static_cast<wchar_t>(0xDC00 + (cp & 0x3FF));
            return;
        }
    }
    out += static_cast<wchar_t>(cp);
}

}  // namespace

std::string utf8ToLower(std::string_view text) {
    const std::ctype<wchar_t>* facet = unicodeCtype();
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        char32_t cp = 0;
        std::size_t len = decode(text, i, cp);
        if (len == 0) {
            out += text[i];
            ++i;
            continue;
        }
        if (cp < 0x80) {
            out += static_cast<char>(cp >= 'A' && cp <= 'Z' ? cp + 32 : cp);
        } else {
            char32_t lower = facet ? static_cast<char32_t>(facet->tolower(static_cast<wchar_t>(cp))) : cp;
            encode(lower, out);
        }
        i += len;
    }
    return out;
}

bool isValidUtf8(std::string_view text) {
    return invalidUtf8At(text) == std::string_view::npos;
}

std::size_t invalidUtf8At(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        char32_t cp = 0;
        std::size_t len = decode(text, i, cp);
        if (len == 0) {
            return i;
        }
        i += len;
    }
    return std::string_view::npos;
}

std::wstring utf8ToWide(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        char32_t cp = 0;
        std::size_t len = decode(text, i, cp);
        if (len == 0) {
            cp = kReplacement;
            len = 1;
        }
        appendWide(out, cp);
        i += len;
    }
    return out;
}

std::string wideToUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t cp = static_cast<char32_t>(text[i]);
        if constexpr (sizeof(wchar_t) == 2) {
            cp &= 0xFFFF;
            char32_t low = i + 1 < text.size() ? static_cast<char32_t>(text[i + 1]) & 0xFFFF : 0;
            if (cp >= 0xD800 && cp <= 0xDBFF && low >= 0xDC00 && low <= 0xDFFF) {
                encode(0x10000 + ((cp - 0xD800) << 10) + (low - 0xDC00), out);
                ++i;
                continue;
            }
        }
        encode((cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF ? kReplacement : cp, out);
    }
    return out;
}

std::size_t utf8PrefixLength(std::string_view text, std::size_t maxBytes) {
    if (text.size() <= maxBytes) {
        return text.size();
    }
    // Step back over the continuation bytes (three at most) of a character that the cut would split.
    std::size_t end = maxBytes;
    for (int k = 0; k < 3 && end > 0 && isContinuation(text[end]); ++k) {
        --end;
    }
    return isContinuation(text[end]) ? maxBytes : end;
}

}  // namespace nq
