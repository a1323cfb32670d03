#pragma once
// FNV-1a, 64 bits, over the bytes of a text: the hash of the class registry and of the user-text
// name sets.

#include <cstdint>
#include <string>
#include <string_view>

namespace nq {

constexpr std::uint64_t fnv1a64(std::string_view text) noexcept {
    std::uint64_t h = 0xCBF29CE484222325ull;
    for (char c : text) {
        h ^= static_cast<unsigned char>(c);
        h *= 0x100000001B3ull;
    }
    return h;
}

// Transparent hasher for unordered containers keyed by text.
struct Fnv1aHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const noexcept { return static_cast<std::size_t>(fnv1a64(s)); }
    std::size_t operator()(const std::string& s) const noexcept { return (*this)(std::string_view(s)); }
    std::size_t operator()(const char* s) const noexcept { return (*this)(std::string_view(s)); }
};

}  // namespace nq
