#include "exporter/MeshCreator.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "core/ExtException.h"

namespace exporter {
namespace {

// The arrays build checks, in the order it checks them, with the text of each failure. The texts
// are the ones users and scripts already know, spelling included.
const std::vector<std::pair<int, const char*>>& checkedArrays() {
    static const std::vector<std::pair<int, const char*>> arrays = [] {
        std::vector<std::pair<int, const char*>> list{
            {kPositions, "Broken vertices array."},
            {kNormals, "Broken normals array."},
            {kTangents, "Broken tangent array."},
            {kBinormals, "Broken binormal array."},
            {kDamageTangents, "Broken damage tangent array."},
            {kDamageBinormals, "Broken damage binormal array."},
        };
        for (int i = 0; i < kTexCoordArrays; ++i) {
            list.emplace_back(kFirstTexCoord + i, "Broken texture array.");
        }
        list.insert(list.end(), {{kColors, "Broken color array."},
                                 {kBoneWeights, "Broken bone wheights array."},
                                 {kMorphPositions, "Broken morphing vertices array."},
                                 {kMorphNormals, "Broken morphing normals array."}});
        // The attributes no record fills are only ever zeros; they are checked last.
        for (int s = kFirstTexCoord + kTexCoordArrays; s < kColors; ++s) {
            list.emplace_back(s, "Broken texture array.");
        }
        list.emplace_back(model::kVertexSemanticCount - 1, "Broken color array.");
        return list;
    }();
    return arrays;
}

}  // namespace

MeshCreator::MeshCreator(const model::VertexFormat& format, std::size_t vertexCount)
    : format_(format), count_(vertexCount) {
    for (int s = 0; s < model::kVertexSemanticCount; ++s) {
        arrays_[static_cast<std::size_t>(s)].assign(format_[s] * vertexCount, 0.0f);
    }
}

template <std::size_t N>
void MeshCreator::put(int semantic, std::size_t index, const std::array<float, N>& values) {
    const std::size_t n = format_.counts[static_cast<std::size_t>(semantic)];
    std::vector<float>& out = array(semantic);
    std::copy_n(values.begin(), std::min(n, N), out.begin() + static_cast<std::ptrdiff_t>(n * index));
}

void MeshCreator::addVertex(std::size_t index, const VertexRecord& record) {
    const float indicesWord = std::bit_cast<float>(record.boneIndices);
    put(kPositions, index,
        std::array<float, 4>{record.position[0], record.position[1], record.position[2], indicesWord});
    put(kNormals, index, record.normal);
    put(kBoneWeights, index, record.boneWeights);
    put(kMorphPositions, index, record.morphPosition);
    put(kMorphNormals, index, record.morphNormal);
    for (std::size_t i = 0; i < record.texCoords.size(); ++i) {
        const int semantic = kFirstTexCoord + static_cast<int>(i);
        const int n = i < kTexCoordArrays ? format_[semantic] : 0;
        if (n != 1 && n != 2) {
            throw nq::ExtException("Empty texture channel.");
        }
        put(semantic, index, record.texCoords[i]);
    }
}

model::Vertices MeshCreator::build() {
    for (const auto& [semantic, message] : checkedArrays()) {
        if (array(semantic).size() != format_[semantic] * count_) {
            throw nq::ExtException(message);
        }
    }
    model::Vertices vertices(format_);
    for (auto& [semantic, attribute] : vertices.attributes) {
        attribute.data = std::move(array(semantic));
    }
    return vertices;
}

}  // namespace exporter
