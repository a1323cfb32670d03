#pragma once
// The reader's working state, shared by its three source files: the file layout
// (NqfReader.cpp), property and material records (NqfPropertyRecords.cpp) and node records
// (NqfNodeRecords.cpp). Not part of the library's interface: use readNqf.

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "model/io/ByteCursor.h"
#include "model/io/NqfDocument.h"

namespace model::io {

class NqfParser {
public:
    explicit NqfParser(std::span<const std::uint8_t> bytes) : cursor_(bytes.data(), bytes.size()) {}

    NqfDocument parse();

private:
    // A segment of the record path for as long as it lives.
    class Scope {
    public:
        Scope(NqfParser& p, std::string segment) : p_(p) { p_.path_.push_back(std::move(segment)); }
        ~Scope() { p_.path_.pop_back(); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        NqfParser& p_;
    };

    // Failures name the offset of the field read last, or the given one.
    [[noreturn]] void fail(std::string expected, std::string found) const;
    [[noreturn]] void failAt(std::uint64_t offset, std::string expected, std::string found) const;
    std::string path() const;

    // Primitive reads; each fails when the buffer ends before the field does.
    const std::uint8_t* need(std::size_t n, std::string_view what);
    std::uint8_t u8(std::string_view what);
    std::uint32_t u32(std::string_view what);
    std::uint64_t u64(std::string_view what);
    float f32(std::string_view what);
    double f64(std::string_view what);
    template <class T, std::size_t N>
    std::array<T, N> array(std::string_view what);
    // A u32 count of elements of at least minBytesEach bytes; fails before anything is allocated
    // when that many cannot fit in what is left.
    std::uint32_t count(std::size_t minBytesEach, std::string_view what);
    void reserved32(std::string_view what);
    // A string reference, resolved; it must be in range and in order of first use.
    const std::string& sref(std::string_view what);
    // Inline text: u32 length and the bytes.
    std::string inlineText(std::string_view what);
    void checkUtf8(std::string_view text, std::uint64_t offset, std::string_view what) const;
    std::uint32_t nodeIndex(std::string_view what);
    std::uint32_t materialIndex();
    void noteArgument(std::uint32_t argument);

    // Property and material records.
    enum class PropertyKind { Any, Static, Animated };
    NqfProperty property(PropertyKind kind = PropertyKind::Any);
    // A u32 count and the records; `what`, when not empty, adds a segment to the record path.
    std::vector<NqfProperty> propertyList(std::string_view what, PropertyKind kind = PropertyKind::Any);
    NqfTexture texture();
    NqfMaterial material();
    NqfVertices vertices();
    NqfIndices indices(std::uint32_t vertexCount);
    std::array<std::uint8_t, 27> vertexFormat();

    // Node records.
    NqfHead head(std::span<const std::string_view> classes, std::string_view kind);
    NqfRoot root();
    NqfNode treeNode();
    NqfNode listNode(std::size_t group);
    NqfAnimationBody animation(const NqfHead& head, std::uint64_t classOffset);
    NqfLightBody light(const NqfHead& head);
    NqfRenderBody render(const NqfHead& head);
    NqfSkinBody skin(const NqfHead& head, bool shell);
    NqfShellBody shell();
    NqfSegmentsBody segments();
    NqfFakeLightsBody fakeLights(const NqfHead& head, bool spot, bool animated);
    NqfFakeSpots3Body fakeSpots3();
    NqfBox box(std::string_view what);
    std::vector<std::uint32_t> links(std::string_view what);

    // File layout.
    void header(NqfDocument& doc);
    void stringTable(NqfDocument& doc);
    void tree(NqfDocument& doc);
    void parentTable(NqfDocument& doc);
    void groups(NqfDocument& doc);

    ByteCursor cursor_;
    std::uint64_t fieldOffset_ = 0;
    std::vector<std::string> path_;
    std::vector<std::string> strings_;
    std::uint64_t stringTableOffset_ = 0;
    std::size_t stringsInUse_ = 0;  // strings are used in table order: the next new one is this
    std::uint32_t treeSize_ = 0;
    std::size_t materialCount_ = 0;
    bool countArguments_ = true;  // whether animated properties count toward the handle count
    bool anyArgument_ = false;
    std::uint32_t highestArgument_ = 0;
    std::uint64_t highestArgumentOffset_ = 0;
    std::uint64_t numHandlesOffset_ = 0;
};

template <class T, std::size_t N>
inline std::array<T, N> NqfParser::array(std::string_view what) {
    const std::uint8_t* p = need(sizeof(T) * N, what);
    std::array<T, N> out{};
    for (std::size_t i = 0; i < N; ++i, p += sizeof(T)) {
        if constexpr (std::is_same_v<T, float>) {
            out[i] = ByteCursor::loadF32(p);
        } else if constexpr (std::is_same_v<T, double>) {
            out[i] = ByteCursor::loadF64(p);
        } else if constexpr (std::is_same_v<T, std::uint32_t>) {
            out[i] = ByteCursor::loadU32(p);
        } else {
            static_assert(std::is_same_v<T, std::uint8_t>);
            out[i] = *p;
        }
    }
    return out;
}

}  // namespace model::io
