#include "model/Vertices.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>

#include "core/ExtException.h"
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

namespace {

// The attributes that hold data, in ascending semantic order, with the offset of each within an
// interleaved vertex.
struct Slot {
    const float* from;
    std::size_t size;
    std::size_t offset;
};

}  // namespace

std::vector<float> Vertices::interleaved() const {
    const std::size_t count = vertexCount();
    // Every attribute must cover every vertex; checking first lets the copy run unchecked.
    std::vector<Slot> slots;
    std::size_t step = 0;
    for (const auto& [semantic, attr] : attributes) {
        if (attr.size <= 0) {
            continue;
        }
        const auto size = static_cast<std::size_t>(attr.size);
        if (attr.data.size() < count * size) {
            throw std::out_of_range("invalid vector subscript");
        }
        slots.push_back({attr.data.data(), size, step});
        step += size;
    }
    std::vector<float> out(count * step);
    if (slots.size() == 1) {
        std::copy_n(slots.front().from, out.size(), out.data());
        return out;
    }
    for (const Slot& slot : slots) {
        const float* from = slot.from;
        float* to = out.data() + slot.offset;
        for (std::size_t v = 0; v < count; ++v, from += slot.size, to += step) {
            std::copy_n(from, slot.size, to);
        }
    }
    return out;
}

void Vertices::assignInterleaved(std::span<const float> interleavedData, std::size_t vertexCount) {
    const std::size_t step = stride();
    // The last float read is the last of the last vertex; checking it first means a failure
    // leaves the attributes as they were.
    if (vertexCount > 0 && step > 0 && interleavedData.size() < vertexCount * step) {
        throw std::out_of_range("invalid vector subscript");
    }
    std::size_t offset = 0;
    for (auto& [semantic, attr] : attributes) {
        if (attr.size <= 0) {
            attr.data.clear();
            continue;
        }
        const auto size = static_cast<std::size_t>(attr.size);
        attr.data.resize(vertexCount * size);
        const float* from = interleavedData.data() + offset;
        float* to = attr.data.data();
        if (size == step) {
            std::copy_n(from, vertexCount * size, to);
        } else {
            for (std::size_t v = 0; v < vertexCount; ++v, from += step, to += size) {
                std::copy_n(from, size, to);
            }
        }
        offset += size;
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
    const std::size_t count = vertexCount();
    // The attributes that hold data, in ascending semantic order. Each must cover every vertex;
    // checking first means a short attribute fails before any byte is written.
    std::vector<const VertexAttribute*> used;
    for (const auto& [semantic, attr] : attributes) {
        if (attr.size > 0) {
            if (attr.data.size() / static_cast<std::size_t>(attr.size) < count) {
                throw std::out_of_range("invalid vector subscript");
            }
            used.push_back(&attr);
        }
    }
    const std::size_t step = stride();
    file.writeU32(static_cast<std::uint32_t>(count));
    file.writeU32(count == 0 ? 0u : static_cast<std::uint32_t>(step));
    if (used.size() == 1) {
        // One attribute is already interleaved: its floats go to the file as they stand, and a sink
        // may point at them rather than copy them.
        file.writeLasting(used.front()->data.data(), count * step * sizeof(float));
        return;
    }
    // Several attributes are interleaved through a small buffer that stays in the cache, so that
    // no copy of the whole mesh is made on the way to the file.
    constexpr std::size_t kChunkFloats = 4096;
    float chunk[kChunkFloats];
    const std::size_t perChunk = step == 0 ? 0 : std::max<std::size_t>(1, kChunkFloats / step);
    std::vector<float> wide;  // only for a vertex wider than the chunk
    float* out = chunk;
    if (perChunk * step > kChunkFloats) {
        wide.resize(step);
        out = wide.data();
    }
    for (std::size_t first = 0; first < count; first += perChunk) {
        const std::size_t last = std::min(count, first + perChunk);
        float* at = out;
        for (std::size_t v = first; v < last; ++v) {
            for (const VertexAttribute* attr : used) {
                const auto size = static_cast<std::size_t>(attr->size);
                const float* from = attr->data.data() + size * v;
                at = std::copy(from, from + size, at);
            }
        }
        file.write(out, static_cast<std::size_t>(at - out) * sizeof(float));
    }
}

}  // namespace model
