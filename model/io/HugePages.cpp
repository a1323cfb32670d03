#include "model/io/HugePages.h"

#include <cstdint>
#include <cstdlib>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace model {

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;

}  // namespace

void adviseHugePages(void* data, std::size_t size) {
#if defined(MADV_HUGEPAGE)
    const auto begin = reinterpret_cast<std::uintptr_t>(data);
    const std::uintptr_t first = (begin + kHugePage - 1) & ~(kHugePage - 1);
    const std::uintptr_t last = (begin + size) & ~(kHugePage - 1);
    if (last > first) {
        ::madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
    }
#else
    (void)data;
    (void)size;
#endif
}

void* allocateLargeBlock(std::size_t size) {
    if (size < kHugePage) {
        return ::operator new(size);
    }
    const std::size_t rounded = (size + kHugePage - 1) & ~(kHugePage - 1);
    void* data = std::aligned_alloc(kHugePage, rounded);
    if (data == nullptr) {
        throw std::bad_alloc();
    }
    adviseHugePages(data, rounded);
    return data;
}

void releaseLargeBlock(void* data, std::size_t size) noexcept {
    if (size < kHugePage) {
        ::operator delete(data);
    } else {
        std::free(data);
    }
}

}  // namespace model
