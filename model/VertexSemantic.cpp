#include "model/VertexSemantic.h"

#include <array>

namespace model {

std::string_view semanticName(std::int32_t semantic) {
    static constexpr std::array<std::string_view, kVertexSemanticCount> names = {
        "POSITION0",  "NORMAL0",    "TANGENT0",   "BINORMAL0",  "TEXCOORD0",  "TEXCOORD1",  "TEXCOORD2",
        "TEXCOORD3",  "TEXCOORD4",  "TEXCOORD5",  "TEXCOORD6",  "TEXCOORD7",  "TEXCOORD8",  "TEXCOORD9",
        "TEXCOORD10", "TEXCOORD11", "TEXCOORD12", "TEXCOORD13", "TEXCOORD14", "TEXCOORD15", "COLOR0",
        "COLOR1",     "POSITION1",  "NORMAL1",    "TANGENT1",   "BINORMAL1",  "COLOR2",
    };
    if (semantic < 0 || semantic >= kVertexSemanticCount) {
        return "UnknownSemantic";
    }
    return names[static_cast<std::size_t>(semantic)];
}

}  // namespace model
