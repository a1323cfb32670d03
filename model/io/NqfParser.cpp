#include "model/io/NqfParser.h"

#include <fmt/format.h>

#include "core/Utf8.h"
#include "model/io/ReadError.h"

namespace model::io {

void NqfParser::fail(std::string expected, std::string found) const {
    failAt(fieldOffset_, std::move(expected), std::move(found));
}

void NqfParser::failAt(std::uint64_t offset, std::string expected, std::string found) const {
    throw ReadError(offset, path(), std::move(expected), std::move(found));
}

std::string NqfParser::path() const {
    std::string out;
    for (const std::string& segment : path_) {
        if (!out.empty() && segment.front() != '[') {
            out += '.';
        }
        out += segment;
    }
    return out.empty() ? "file" : out;
}

const std::uint8_t* NqfParser::need(std::size_t n, std::string_view what) {
    fieldOffset_ = cursor_.offset();
    if (const std::uint8_t* p = cursor_.take(n)) {
        return p;
    }
    fail(fmt::format("{} bytes of {}", n, what),
         cursor_.remaining() == 0 ? "the end of the file"
                                  : fmt::format("only {} bytes left", cursor_.remaining()));
}

std::uint8_t NqfParser::u8(std::string_view what) {
    return *need(1, what);
}
std::uint32_t NqfParser::u32(std::string_view what) {
    return ByteCursor::loadU32(need(4, what));
}
std::uint64_t NqfParser::u64(std::string_view what) {
    return ByteCursor::loadU64(need(8, what));
}
float NqfParser::f32(std::string_view what) {
    return ByteCursor::loadF32(need(4, what));
}
double NqfParser::f64(std::string_view what) {
    return ByteCursor::loadF64(need(8, what));
}

std::uint32_t NqfParser::count(std::size_t minBytesEach, std::string_view what) {
    const std::uint32_t n = u32(what);
    const std::uint64_t least = static_cast<std::uint64_t>(n) * minBytesEach;
    if (least > cursor_.remaining()) {
        fail(fmt::format("a {} whose entries fit in the {} bytes left (at least {} bytes each)", what,
                         cursor_.remaining(), minBytesEach),
             std::to_string(n));
    }
    return n;
}

void NqfParser::reserved32(std::string_view what) {
    if (const std::uint32_t v = u32(what); v != 0) {
        fail(fmt::format("{} 0", what), std::to_string(v));
    }
}

const std::string& NqfParser::sref(std::string_view what) {
    const std::uint32_t ref = u32(what);
    if (ref >= strings_.size()) {
        fail(fmt::format("a string reference below {} for {}", strings_.size(), what), std::to_string(ref));
    }
    // The writer interns strings as it writes their references, so reading in file order the
    // first reference to each string comes in table order.
    if (ref > stringsInUse_) {
        fail(fmt::format("a string reference at most {} for {} (strings are stored in order of first use)",
                         stringsInUse_, what),
             std::to_string(ref));
    }
    if (ref == stringsInUse_) {
        ++stringsInUse_;
    }
    return strings_[ref];
}

std::string NqfParser::inlineText(std::string_view what) {
    const std::uint32_t n = count(1, fmt::format("{} length", what));
    const std::uint8_t* p = need(n, what);
    std::string text(reinterpret_cast<const char*>(p), n);
    checkUtf8(text, fieldOffset_, what);
    return text;
}

void NqfParser::checkUtf8(std::string_view text, std::uint64_t offset, std::string_view what) const {
    if (const std::size_t bad = nq::invalidUtf8At(text); bad != std::string_view::npos) {
        failAt(offset + bad, fmt::format("UTF-8 text in {}", what),
               fmt::format("the byte 0x{:02X}", static_cast<unsigned char>(text[bad])));
    }
}

std::uint32_t NqfParser::nodeIndex(std::string_view what) {
    const std::uint32_t index = u32(what);
    if (index >= treeSize_) {
        fail(fmt::format("a tree node index below {} for {}", treeSize_, what), std::to_string(index));
    }
    return index;
}

std::uint32_t NqfParser::materialIndex() {
    const std::uint32_t index = u32("material index");
    if (index >= materialCount_) {
        fail(fmt::format("a material index below {}", materialCount_), std::to_string(index));
    }
    return index;
}

void NqfParser::noteArgument(std::uint32_t argument) {
    if (!countArguments_ || argument == kNoIndex) {
        return;
    }
    if (!anyArgument_ || argument > highestArgument_) {
        anyArgument_ = true;
        highestArgument_ = argument;
        highestArgumentOffset_ = fieldOffset_;
    }
}

}  // namespace model::io
