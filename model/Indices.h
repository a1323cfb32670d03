#pragma once
// The index list of one mesh. Always 32-bit in memory; written in the narrowest width that holds
// its largest index.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace io {
class IBinaryFileW;
class IBinaryFileR;
}  // namespace io

namespace model {

// Primitive kinds of an index list.
enum PrimitiveType : std::uint32_t {
    kPoints = 0,
    kLineList = 1,
    kLineStrip = 2,
    kTriangleList = 5,
    kTriangleStrip = 6,
    kTriangleFan = 7,
};

// Width tags of the written indices.
enum IndexWidth : std::uint8_t {
    kIndexWidth8 = 0,
    kIndexWidth16 = 1,
    kIndexWidth32 = 2,
};

struct Indices {
    Indices() = default;
    Indices(std::uint32_t primitiveType, std::vector<std::uint32_t> values)
        : primitive(primitiveType), indices(std::move(values)) {}

    // u8 width tag, u32 count, u32 primitive, then the indices in that width.
    virtual void write(io::IBinaryFileW& file) const;
    // The mirror of write.
    virtual void read(io::IBinaryFileR& file);
    virtual ~Indices() = default;

    Indices(const Indices&) = default;
    Indices(Indices&&) = default;
    Indices& operator=(const Indices&) = default;
    Indices& operator=(Indices&&) = default;

    // The tag write would use for the current indices.
    IndexWidth widthTag() const;
    // The number of primitives the list makes, by its primitive kind.
    std::size_t primitiveCount() const;

    // Checked access: past the end throws std::out_of_range "invalid vector subscript".
    std::uint32_t& at(std::size_t i);
    std::uint32_t at(std::size_t i) const;

    bool operator==(const Indices& other) const {
        return primitive == other.primitive && indices == other.indices;
    }

    std::uint32_t primitive = kTriangleList;
    std::vector<std::uint32_t> indices;
};

}  // namespace model
