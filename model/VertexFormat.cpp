#include "model/VertexFormat.h"

#include <numeric>
#include <stdexcept>

#include "core/ExtException.h"
#include "model/io/IBinaryFileR.h"
#include "model/io/IBinaryFileW.h"

namespace model {

void VertexFormat::failOutOfRange() {
    throw std::out_of_range("nq::array: index out of range");
}

unsigned VertexFormat::sum() const {
    return std::accumulate(counts.begin(), counts.end(), 0u);
}

void VertexFormat::save(io::IBinaryFileW& file) const {
    file.writeU32(kVertexSemanticCount);
    file.write(counts.data(), counts.size());
}

void VertexFormat::load(io::IBinaryFileR& file) {
    std::uint32_t n = file.readU32();
    if (n != kVertexSemanticCount) {
        throw nq::ExtException("Vertex format of " + std::to_string(n) + " entries, 27 expected.");
    }
    file.readExact(counts.data(), counts.size());
}

}  // namespace model
