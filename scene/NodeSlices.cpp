#include "scene/NodeSlices.h"

#include <bit>
#include <cstdint>
#include <cstring>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace scene {
namespace {

bool isSpace(char c) {
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

const char* skipSpace(const char* p, const char* end) {
    while (p < end && isSpace(*p)) {
        ++p;
    }
    return p;
}

// Finds the end of the object or array that opens at p by counting its brackets outside strings.
// The split is checked afterwards by parsing each piece, so this only has to be exact for
// well-formed text; on anything else it may return any place or none.
class BracketScanner {
public:
    explicit BracketScanner(const char* end) : end_(end) {}

    // The place just after the bracket that closes the one at p, or null.
    const char* matchingClose(const char* p) {
        depth_ = 0;
        inString_ = false;
#ifdef __SSE2__
        // Blocks of 64 bytes: strings are masked by the running parity of their quotes, and a block
        // whose brackets cannot bring the depth back to zero is passed over with two counts.
        // A block with a backslash, and the tail of the text, go byte by byte.
        while (end_ - p >= 64) {
            const Masks m = masks(p);
            if (m.backslash != 0) {
                if (const char* close = bytes(p, p + 64)) {
                    return close;
                }
                p = next_;
                continue;
            }
            const std::uint64_t string = prefixParity(m.quote) ^ (inString_ ? ~std::uint64_t{0} : 0);
            inString_ = (string >> 63) != 0;
            const std::uint64_t open = m.open & ~string;
            const std::uint64_t close = m.close & ~string;
            const int closes = bitCount(close);
            if (depth_ - closes > 0) {
                depth_ += bitCount(open) - closes;
            } else {
                for (std::uint64_t rest = open | close; rest != 0; rest &= rest - 1) {
                    const int i = std::countr_zero(rest);
                    if ((open >> i) & 1) {
                        ++depth_;
                    } else if (--depth_ == 0) {
                        return p + i + 1;
                    }
                }
            }
            p += 64;
        }
#endif
        return bytes(p, end_);
    }

private:
    // Goes byte by byte from p to at least limit; the place after the closing bracket, or null
    // with next_ set to where it stopped (an escape may carry it one byte past limit).
    const char* bytes(const char* p, const char* limit) {
        for (; p < limit; ++p) {
            const char c = *p;
            if (inString_) {
                if (c == '\\') {
                    ++p;
                } else if (c == '"') {
                    inString_ = false;
                }
            } else if (c == '"') {
                inString_ = true;
            } else if (c == '{' || c == '[') {
                ++depth_;
            } else if ((c == '}' || c == ']') && --depth_ == 0) {
                return p + 1;
            }
        }
        next_ = p;
        return nullptr;
    }

#ifdef __SSE2__
    struct Masks {
        std::uint64_t quote = 0, backslash = 0, open = 0, close = 0;
    };

    static Masks masks(const char* p) {
        Masks m;
        for (int k = 0; k < 4; ++k) {
            const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * k));
            // '[' and '{' differ only in the bit 0x20, as do ']' and '}'.
            const __m128i folded = _mm_or_si128(v, _mm_set1_epi8(0x20));
            auto bits = [&](__m128i x, char c) {
                return static_cast<std::uint64_t>(
                           static_cast<std::uint16_t>(_mm_movemask_epi8(_mm_cmpeq_epi8(x, _mm_set1_epi8(c)))))
                       << (16 * k);
            };
            m.quote |= bits(v, '"');
            m.backslash |= bits(v, '\\');
            m.open |= bits(folded, '{');
            m.close |= bits(folded, '}');
        }
        return m;
    }

    // The number of bits set, inline: without the POPCNT instruction in the target, std::popcount
    // is a call into the compiler's runtime, made twice for every block.
    static int bitCount(std::uint64_t x) {
        x -= (x >> 1) & 0x5555555555555555u;
        x = (x & 0x3333333333333333u) + ((x >> 2) & 0x3333333333333333u);
        x = (x + (x >> 4)) & 0x0F0F0F0F0F0F0F0Fu;
        return static_cast<int>((x * 0x0101010101010101u) >> 56);
    }

    // Bit i is set when an odd number of the bits 0 to i of quotes are: the bytes from an opening
    // quote up to, not including, its closing one.
    static std::uint64_t prefixParity(std::uint64_t quotes) {
        for (int shift = 1; shift < 64; shift *= 2) {
            quotes ^= quotes << shift;
        }
        return quotes;
    }
#endif

    const char* end_;
    const char* next_ = nullptr;
    int depth_ = 0;
    bool inString_ = false;
};

// Just after the '[' of the root's "nodes" field, or null. Only keys written without escapes
// are recognised; the rest is left to the reading of the whole document.
const char* findNodesArray(const char* p, const char* end) {
    int depth = 0;
    for (; p < end; ++p) {
        const char c = *p;
        if (c == '"') {
            const char* key = ++p;
            while (p < end && *p != '"') {
                p += *p == '\\' ? 2 : 1;
            }
            if (p >= end) {
                return nullptr;
            }
            if (depth == 1 && std::string_view(key, static_cast<std::size_t>(p - key)) == "nodes") {
                const char* colon = skipSpace(p + 1, end);
                if (colon < end && *colon == ':') {
                    const char* value = skipSpace(colon + 1, end);
                    return value < end && *value == '[' ? value + 1 : nullptr;
                }
            }
        } else if (c == '{' || c == '[') {
            ++depth;
        } else if (c == '}' || c == ']') {
            --depth;
        }
    }
    return nullptr;
}

}  // namespace

std::optional<NodeSlices> sliceNodes(const simdjson::padded_string& text) {
    const char* end = text.data() + text.size();
    const char* open = findNodesArray(text.data(), end);
    if (open == nullptr) {
        return std::nullopt;
    }
    NodeSlices slices;
    BracketScanner scanner(end);
    const char* p = skipSpace(open, end);
    while (true) {
        if (p >= end || *p != '{') {
            return std::nullopt;
        }
        const char* close = scanner.matchingClose(p);
        if (close == nullptr) {
            return std::nullopt;
        }
        slices.nodes.emplace_back(p, static_cast<std::size_t>(close - p));
        p = skipSpace(close, end);
        if (p < end && *p == ']') {
            break;
        }
        if (p >= end || *p != ',') {
            return std::nullopt;
        }
        p = skipSpace(p + 1, end);
    }
    const auto head = static_cast<std::size_t>(open - text.data());
    const auto tail = static_cast<std::size_t>(end - p);
    slices.skeleton = simdjson::padded_string(head + tail);
    std::memcpy(slices.skeleton.data(), text.data(), head);
    std::memcpy(slices.skeleton.data() + head, p, tail);
    return slices;
}

}  // namespace scene
