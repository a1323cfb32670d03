#include "model/utils/RemapDuplicates.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <meshoptimizer.h>

#include "model/utils/MeshChecks.h"

namespace model::utils {

namespace {

// meshoptimizer's remap functions take vertices of at most this many bytes, and index lists of
// whole triangles.
constexpr std::size_t kLibraryVertexLimit = 256;
constexpr std::size_t kLibraryIndexGroup = 3;
constexpr std::uint32_t kUnused = 0xFFFFFFFFu;

}  // namespace

std::size_t generateVertexRemapBytes(std::uint32_t* remap, const std::uint32_t* indices,
                                     std::size_t indexCount, const void* vertices, std::size_t count,
                                     std::size_t vertexSize) {
    std::fill(remap, remap + count, kUnused);
    const char* bytes = static_cast<const char*>(vertices);
    std::unordered_map<std::string_view, std::uint32_t> numberByBytes;
    numberByBytes.reserve(count);
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < indexCount; ++i) {
        std::uint32_t index = indices[i];
        if (remap[index] != kUnused) {
            continue;
        }
        auto [it, inserted] = numberByBytes.try_emplace(
            std::string_view(bytes + std::size_t{index} * vertexSize, vertexSize), next);
        remap[index] = it->second;
        next += inserted ? 1 : 0;
    }
    return next;
}

std::uint32_t remapDuplicateVertices(Vertices& vertices, Indices& indices, std::string_view nodeName) {
    checkMesh(vertices, indices, nodeName);
    std::size_t count = vertices.vertexCount();
    if (count == 0) {
        return 0;
    }
    if (indices.indices.empty()) {
        vertices.assignInterleaved({}, 0);
        return static_cast<std::uint32_t>(count);
    }
    std::size_t stride = vertices.stride();
    std::size_t vertexSize = stride * sizeof(float);
    std::vector<float> data = vertices.interleaved();
    const std::vector<std::uint32_t>& old = indices.indices;
    std::vector<std::uint32_t> remap(count);
    bool library = vertexSize <= kLibraryVertexLimit && old.size() % kLibraryIndexGroup == 0;
    std::size_t unique = library ? meshopt_generateVertexRemap(remap.data(), old.data(), old.size(),
                                                               data.data(), count, vertexSize)
                                 : generateVertexRemapBytes(remap.data(), old.data(), old.size(), data.data(),
                                                            count, vertexSize);
    if (unique >= count) {
        return 0;
    }
    std::vector<std::uint32_t> newIndices(old.size());
    if (library) {
        meshopt_remapIndexBuffer(newIndices.data(), old.data(), old.size(), remap.data());
    } else {
        for (std::size_t i = 0; i < old.size(); ++i) {
            newIndices[i] = remap[old[i]];
        }
    }
    // Each attribute is remapped on its own, from its own floats: a vertex's floats in one
    // attribute are part of its bytes, so vertices that share a number are equal there too.
    for (auto& [semantic, attr] : vertices.attributes) {
        if (attr.size <= 0) {
            attr.data.clear();
            continue;
        }
        const auto size = static_cast<std::size_t>(attr.size);
        std::vector<float> remapped(unique * size);
        for (std::size_t v = 0; v < count; ++v) {
            if (remap[v] != kUnused) {
                std::copy_n(attr.data.data() + v * size, size,
                            remapped.data() + std::size_t{remap[v]} * size);
            }
        }
        attr.data = std::move(remapped);
    }
    indices.indices = std::move(newIndices);
    return static_cast<std::uint32_t>(count - unique);
}

}  // namespace model::utils
