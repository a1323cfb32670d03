#include "model/Vertices.h"

#include <utility>

#include <fmt/format.h>

#include "core/ExtException.h"
#include "model/CheckedAt.h"
#include "model/io/IBinaryFileW.h"

namespace model {

Vertices::Vertices(const VertexFormat& format) {
    for (int s = 0; s < kVertexSemanticCount; ++s) {
        if (format[s] != 0) {
            attributes[static_cast<VertexSemantic>(s)].size = format[s];
        }
    }
}

Vertices::Vertices(std::span<const float> interleavedData, std::size_t vertexCount,
                   const VertexFormat& format)
    : Vertices(format) {
    assignInterleaved(interleavedData, vertexCount);
}

std::size_t Vertices::vertexCount() const {
    if (attributes.empty()) {
        return 0;
    }
    const VertexAttribute& lowest = attributes.begin()->second;
    if (lowest.size <= 0) {
        return 0;
    }
    return lowest.data.size() / static_cast<std::size_t>(lowest.size);
}

std::size_t Vertices::stride() const {
    std::size_t sum = 0;
    for (const auto& [semantic, attr] : attributes) {
        if (attr.size > 0) {
            sum += static_cast<std::size_t>(attr.size);
        }
    }
    return sum;
}

VertexFormat Vertices::format() const {
    VertexFormat f;
    for (const auto& [semantic, attr] : attributes) {
        f[semantic] = static_cast<std::uint8_t>(attr.size);
    }
    return f;
}

bool Vertices::matchesFormat(const VertexFormat& format) const {
    for (int s = 0; s < kVertexSemanticCount; ++s) {
        const VertexAttribute* attr = findAttribute(static_cast<VertexSemantic>(s));
        std::int32_t size = attr ? attr->size : 0;
        if (size != format[s]) {
            return false;
        }
    }
    return true;
}

VertexAttribute* Vertices::findAttribute(VertexSemantic semantic) {
    auto it = attributes.find(semantic);
    return it == attributes.end() ? nullptr : &it->second;
}

const VertexAttribute* Vertices::findAttribute(VertexSemantic semantic) const {
    auto it = attributes.find(semantic);
    return it == attributes.end() ? nullptr : &it->second;
}

VertexAttribute& Vertices::attribute(VertexSemantic semantic) {
    return const_cast<VertexAttribute&>(std::as_const(*this).attribute(semantic));
}

const VertexAttribute& Vertices::attribute(VertexSemantic semantic) const {
    const VertexAttribute* attr = findAttribute(semantic);
    if (!attr) {
        throw nq::ExtException(fmt::format("Vertices don't have {} attribute.", semanticName(semantic)));
    }
    return *attr;
}

VertexAttribute& Vertices::setAttribute(VertexSemantic semantic, std::int32_t size, std::vector<float> data) {
    VertexAttribute& attr = attributes[semantic];
    attr.size = size;
    attr.data = std::move(data);
    return attr;
}

bool Vertices::append(const Vertices& other) {
    if (attributes.size() != other.attributes.size()) {
        return false;
    }
    for (const auto& [semantic, attr] : attributes) {
        const VertexAttribute* partner = other.findAttribute(semantic);
        if (!partner || partner->size != attr.size) {
            return false;
        }
    }
    for (auto& [semantic, attr] : attributes) {
        const std::vector<float>& more = other.attributes.at(semantic).data;
        attr.data.insert(attr.data.end(), more.begin(), more.end());
    }
    return true;
}

std::optional<Vertices> Vertices::selectFormat(const VertexFormat& format) const {
    Vertices result;
    int running = 0;
    for (int s = 0; s < kVertexSemanticCount; ++s) {
        if (format[s] == 0) {
            continue;
        }
        const VertexAttribute* attr = findAttribute(static_cast<VertexSemantic>(running));
        if (!attr || attr->size != format[running]) {
            return std::nullopt;
        }
        result.attributes[static_cast<VertexSemantic>(running)] = *attr;
        ++running;
    }
    return result;
}

std::vector<float> Vertices::interleaved() const {
    std::size_t count = vertexCount();
    std::vector<float> out;
    out.reserve(count * stride());
    for (std::size_t v = 0; v < count; ++v) {
        for (const auto& [semantic, attr] : attributes) {
            if (attr.size <= 0) {
                continue;
            }
            std::size_t size = static_cast<std::size_t>(attr.size);
            for (std::size_t k = 0; k < size; ++k) {
                out.push_back(checkedAt(attr.data, size * v + k));
            }
        }
    }
    return out;
}

void Vertices::assignInterleaved(std::span<const float> interleavedData, std::size_t vertexCount) {
    // Built aside and swapped in, so a failed read leaves the attributes as they were.
    std::map<VertexSemantic, std::vector<float>> fresh;
    for (const auto& [semantic, attr] : attributes) {
        fresh[semantic];
    }
    std::size_t step = stride();
    for (std::size_t v = 0; v < vertexCount; ++v) {
        std::size_t offset = 0;
        for (const auto& [semantic, attr] : attributes) {
            if (attr.size <= 0) {
                continue;
            }
            std::size_t size = static_cast<std::size_t>(attr.size);
            std::vector<float>& target = fresh[semantic];
            for (std::size_t k = 0; k < size; ++k) {
                target.push_back(checkedAt(interleavedData, step * v + offset + k));
            }
            offset += size;
        }
    }
    for (auto& [semantic, attr] : attributes) {
        attr.data = std::move(fresh[semantic]);
    }
}

bool Vertices::isValid() const {
    for (const auto& [semantic, attr] : attributes) {
        if (attr.size <= 0) {
            if (!attr.data.empty()) {
                return false;
            }
        } else if (attr.data.size() % static_cast<std::size_t>(attr.size) != 0) {
            return false;
        }
    }
    return true;
}

void Vertices::save(io::IBinaryFileW& file) const {
    if (!isValid()) {
        throw nq::ExtException("Vertex data is invalid.");
    }
    std::vector<float> data = interleaved();
    std::size_t count = vertexCount();
    file.writeU32(static_cast<std::uint32_t>(count));
    file.writeU32(count == 0 ? 0u : static_cast<std::uint32_t>(data.size() / count));
    file.write(data.data(), data.size() * sizeof(float));
}

}  // namespace model
