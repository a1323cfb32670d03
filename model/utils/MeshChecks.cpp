#include "model/utils/MeshChecks.h"

#include <fmt/format.h>

#include "core/ExtException.h"

namespace model::utils {

bool hasWholeVertices(const Vertices& vertices) {
    std::size_t count = vertices.vertexCount();
    for (const auto& [semantic, attr] : vertices.attributes) {
        if (attr.size <= 0) {
            continue;
        }
        std::size_t size = static_cast<std::size_t>(attr.size);
        if (attr.data.size() % size != 0 || attr.data.size() / size != count) {
            return false;
        }
    }
    return true;
}

void checkMesh(const Vertices& vertices, const Indices& indices, std::string_view nodeName) {
    if (!hasWholeVertices(vertices)) {
        throw nq::ExtException(std::string(kWrongVertexSize));
    }
    std::size_t count = vertices.vertexCount();
    for (std::uint32_t index : indices.indices) {
        if (index >= count) {
            throw nq::ExtException(fmt::format("Index {} is past the end of the {} vertices of node '{}'.",
                                               index, count, nodeName));
        }
    }
}

}  // namespace model::utils
