#include "model/Indices.h"

#include <algorithm>
#include <stdexcept>
#include <string>

#include "core/ExtException.h"
#include "model/CheckedAt.h"
#include "model/io/IBinaryFileR.h"
#include "model/io/IBinaryFileW.h"

namespace model {

IndexWidth Indices::widthTag() const {
    if (indices.empty()) {
        return kIndexWidth8;
    }
    std::uint32_t largest = *std::max_element(indices.begin(), indices.end());
    if (largest < 256) {
        return kIndexWidth8;
    }
    if (largest > 65535) {
        return kIndexWidth32;
    }
    return kIndexWidth16;
}

std::size_t Indices::primitiveCount() const {
    std::size_t n = indices.size();
    switch (primitive) {
        case kPoints:
            return n;
        case kLineList:
            return n / 2;
        case kLineStrip:
            return n >= 1 ? n - 1 : 0;
        case kTriangleList:
            return n / 3;
        case kTriangleStrip:
        case kTriangleFan:
            return n >= 2 ? n - 2 : 0;
        default:
            return 0;
    }
}

std::uint32_t& Indices::at(std::size_t i) {
    return checkedAt(indices, i);
}
std::uint32_t Indices::at(std::size_t i) const {
    return checkedAt(indices, i);
}

void Indices::write(io::IBinaryFileW& file) const {
    IndexWidth tag = widthTag();
    file.writeU8(tag);
    file.writeU32(static_cast<std::uint32_t>(indices.size()));
    file.writeU32(primitive);
    switch (tag) {
        case kIndexWidth8:
            for (std::uint32_t i : indices) {
                file.writeU8(static_cast<std::uint8_t>(i));
            }
            break;
        case kIndexWidth16:
            for (std::uint32_t i : indices) {
                file.writeU16(static_cast<std::uint16_t>(i));
            }
            break;
        case kIndexWidth32:
            file.writeLasting(indices.data(), indices.size() * sizeof(std::uint32_t));
            break;
    }
}

void Indices::read(io::IBinaryFileR& file) {
    std::uint8_t tag = file.readU8();
    std::uint32_t count = file.readU32();
    std::uint32_t kind = file.readU32();
    if (tag > kIndexWidth32) {
        throw nq::ExtException("Unknown index width tag " + std::to_string(tag) + ".");
    }
    // A count the source cannot hold is refused before any memory is taken for it.
    std::uint64_t width = tag == kIndexWidth8 ? 1 : (tag == kIndexWidth16 ? 2 : 4);
    if (static_cast<std::uint64_t>(count) * width > file.remaining()) {
        throw nq::ExtException("Index list of " + std::to_string(count) + " entries runs past the end of " +
                               file.name() + ".");
    }
    primitive = kind;
    indices.assign(count, 0);
    switch (tag) {
        case kIndexWidth8:
            for (std::uint32_t& i : indices) {
                i = file.readU8();
            }
            break;
        case kIndexWidth16:
            for (std::uint32_t& i : indices) {
                i = file.readU16();
            }
            break;
        default:
            if (indices.empty()) {
                throw std::out_of_range("Call front() on empty vector.");
            }
            file.readExact(&indices.front(), indices.size() * sizeof(std::uint32_t));
            break;
    }
}

}  // namespace model
