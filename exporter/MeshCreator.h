#pragma once
// Assembles the vertices of one render node: one float array per attribute, filled vertex by
// vertex from the welded records, checked at the end and handed over as they stand.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "exporter/VertexRecord.h"
#include "model/VertexFormat.h"
#include "model/VertexSemantic.h"
#include "model/Vertices.h"

namespace exporter {

// The attributes MeshCreator fills, by their semantics.
inline constexpr int kPositions = 0;         // POSITION0; a fourth float carries the bone indices
inline constexpr int kNormals = 1;           // NORMAL0
inline constexpr int kTangents = 2;          // TANGENT0
inline constexpr int kBinormals = 3;         // BINORMAL0
inline constexpr int kFirstTexCoord = 4;     // TEXCOORD0, then one semantic for each channel
inline constexpr int kTexCoordArrays = 13;   // TEXCOORD0 to TEXCOORD12
inline constexpr int kColors = 20;           // COLOR0
inline constexpr int kBoneWeights = 21;      // COLOR1
inline constexpr int kMorphPositions = 22;   // POSITION1
inline constexpr int kMorphNormals = 23;     // NORMAL1
inline constexpr int kDamageTangents = 24;   // TANGENT1
inline constexpr int kDamageBinormals = 25;  // BINORMAL1

class MeshCreator {
public:
    // The format must outlive the creator. Every array gets format entry times vertexCount zeros.
    MeshCreator(const model::VertexFormat& format, std::size_t vertexCount);

    // Writes the record at vertex index: position (with the bone indices as the fourth float when
    // the format has one), normal, bone weights, morph position and morph normal where the format
    // has them, and each texture pair, whose channel must have 1 or 2 floats in the format (else
    // nq::ExtException "Empty texture channel.").
    void addVertex(std::size_t index, const VertexRecord& record);

    // Checks that every array holds format entry times vertex count floats (else
    // nq::ExtException naming the array), then moves the arrays of the format's attributes into
    // the vertices it returns; the creator's arrays are left empty.
    model::Vertices build();

    std::size_t vertexCount() const { return count_; }
    int floats(int semantic) const { return format_[semantic]; }
    // The array of one semantic, vertex after vertex.
    std::vector<float>& array(int semantic) { return arrays_[static_cast<std::size_t>(semantic)]; }
    const std::vector<float>& array(int semantic) const {
        return arrays_[static_cast<std::size_t>(semantic)];
    }

private:
    // Copies up to the format's count of values into the slot of the vertex; the rest stays zero.
    template <std::size_t N>
    void put(int semantic, std::size_t index, const std::array<float, N>& values);

    const model::VertexFormat& format_;
    std::size_t count_;
    std::array<std::vector<float>, model::kVertexSemanticCount> arrays_;
};

}  // namespace exporter
