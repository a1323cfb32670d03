#pragma once
// Floats per vertex of each of the 27 semantics, 0 when absent.

#include <array>
#include <cstdint>

#include "model/VertexSemantic.h"

namespace io {
class IBinaryFileW;
class IBinaryFileR;
}  // namespace io

namespace model {

struct VertexFormat {
    std::array<std::uint8_t, kVertexSemanticCount> counts{};

    // Checked access: a number outside 0 to 26 throws std::out_of_range. Inline, since the
    // exporter reads the format once or more for every vertex it assembles.
    std::uint8_t& operator[](int semantic) {
        checkSemantic(semantic);
        return counts[static_cast<std::size_t>(semantic)];
    }
    std::uint8_t operator[](int semantic) const {
        checkSemantic(semantic);
        return counts[static_cast<std::size_t>(semantic)];
    }

    bool operator==(const VertexFormat&) const = default;
    // Floats per vertex.
    unsigned sum() const;

    // The persistent form: u32 27, then the 27 counts.
    void save(io::IBinaryFileW& file) const;
    void load(io::IBinaryFileR& file);

private:
    static void checkSemantic(int semantic) {
        if (static_cast<unsigned>(semantic) >= static_cast<unsigned>(kVertexSemanticCount)) {
            failOutOfRange();
        }
    }
    [[noreturn]] static void failOutOfRange();
};

}  // namespace model
