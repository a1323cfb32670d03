#pragma once
// The allocator of the model library. Exhausted memory is not a null result: it throws
// nq::ExtException with the text "nq_malloc".

#include <cstddef>

namespace nq {

void* nq_malloc(std::size_t size);
void* nq_realloc(void* block, std::size_t size);
void nq_free(void* block) noexcept;

}  // namespace nq
