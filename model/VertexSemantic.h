#pragma once
// The names of the vertex attributes. The values are the attributes' order in memory and in the
// file; POSITION0 comes first because the vertex count is read from the lowest attribute.

#include <cstdint>
#include <string_view>

namespace model {

enum VertexSemantic : std::int32_t {
    POSITION0 = 0,
    NORMAL0,
    TANGENT0,
    BINORMAL0,
    TEXCOORD0,
    TEXCOORD1,
    TEXCOORD2,
    TEXCOORD3,
    TEXCOORD4,
    TEXCOORD5,
    TEXCOORD6,
    TEXCOORD7,
    TEXCOORD8,
    TEXCOORD9,
    TEXCOORD10,
    TEXCOORD11,
    TEXCOORD12,
    TEXCOORD13,
    TEXCOORD14,
    TEXCOORD15,
    COLOR0,
    COLOR1,
    POSITION1,
    NORMAL1,
    TANGENT1,
    BINORMAL1,
    COLOR2,
};

inline constexpr int kVertexSemanticCount = 27;

// The texture-coordinate channels a vertex can hold, TEXCOORD0 to TEXCOORD15.
inline constexpr int kTexCoordChannels = TEXCOORD15 - TEXCOORD0 + 1;
// The entry of a material's texture channel table that names no channel.
inline constexpr std::uint32_t kNoTexCoordChannel = 0xFFFFFFFFu;

// The semantic of texture-coordinate channel n.
constexpr VertexSemantic texCoordSemantic(int channel) {
    return static_cast<VertexSemantic>(TEXCOORD0 + channel);
}

// The name of the table, or "UnknownSemantic" for any other number.
std::string_view semanticName(std::int32_t semantic);

}  // namespace model
