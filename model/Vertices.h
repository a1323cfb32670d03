#pragma once
// The vertex data of one mesh: one float array per semantic, kept apart while the model is built
// and interleaved in ascending semantic order when it is written.

#include <cstddef>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include "model/VertexAttribute.h"
#include "model/VertexFormat.h"
#include "model/VertexSemantic.h"

namespace io {
class IBinaryFileW;
}

namespace model {

class Vertices {
public:
    using AttributeMap = std::map<VertexSemantic, VertexAttribute>;

    Vertices() = default;
    // One empty attribute for each non-zero entry of the format.
    explicit Vertices(const VertexFormat& format);
    // The same, then filled from interleaved data.
    Vertices(std::span<const float> interleavedData, std::size_t vertexCount, const VertexFormat& format);

    // Taken from the lowest attribute; 0 for an empty map.
    std::size_t vertexCount() const;
    // Floats per vertex over all attributes.
    std::size_t stride() const;
    VertexFormat format() const;
    // An attribute of size 0 and an absent one count alike.
    bool matchesFormat(const VertexFormat& format) const;

    VertexAttribute* findAttribute(VertexSemantic semantic);
    const VertexAttribute* findAttribute(VertexSemantic semantic) const;
    // Throws nq::ExtException "Vertices don't have <name> attribute." when absent.
    VertexAttribute& attribute(VertexSemantic semantic);
    const VertexAttribute& attribute(VertexSemantic semantic) const;
    // Adds (or replaces) an attribute with the given size and data.
    VertexAttribute& setAttribute(VertexSemantic semantic, std::int32_t size, std::vector<float> data = {});

    // Appends other's vertices behind this one's. False, and nothing changed, unless both have
    // the same semantics with the same sizes.
    bool append(const Vertices& other);

    // Copies of the attributes a format names, walked as an unbroken run from semantic 0; empty
    // when an attribute is missing or of another size.
    std::optional<Vertices> selectFormat(const VertexFormat& format) const;

    // All vertices, attributes in ascending semantic order within each vertex. Reads are
    // bounds-checked: an attribute shorter than the lowest one throws std::out_of_range.
    std::vector<float> interleaved() const;
    // Replaces all attribute data from interleaved floats; sizes are kept. Bounds-checked; on a
    // failure the data is left as it was. The floats must not lie in this object's own attributes.
    void assignInterleaved(std::span<const float> interleavedData, std::size_t vertexCount);

    // Every attribute's element count is a whole multiple of its size, and a size of 0 holds no data.
    bool isValid() const;

    // u32 vertex count, u32 floats per vertex, the interleaved floats. Throws nq::ExtException
    // "Vertex data is invalid." before anything is written when isValid() is false.
    void save(io::IBinaryFileW& file) const;

    bool operator==(const Vertices&) const = default;

    AttributeMap attributes;
};

}  // namespace model
