#include "core/Memory.h"

#include <cstdlib>

#include "core/ExtException.h"

namespace nq {

void* nq_malloc(std::size_t size) {
    void* block = std::malloc(size == 0 ? 1 : size);
    if (!block) {
        throw ExtException("nq_malloc");
    }
    return block;
}

void* nq_realloc(void* block, std::size_t size) {
    void* grown = std::realloc(block, size == 0 ? 1 : size);
    if (!grown) {
        throw ExtException("nq_malloc");
    }
    return grown;
}

void nq_free(void* block) noexcept {
    std::free(block);
}

}  // namespace nq
