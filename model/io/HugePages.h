#pragma once
// Large blocks backed by huge pages, so that their first touch costs one fault per 2 MiB rather
// than one per 4 KiB, and random reads across them (hash indexes) miss the address cache far less.

#include <cstddef>

namespace model {

// Only whole huge pages inside the block are advised. The advice is a hint: a refusal, or a
// system without it, changes nothing but the speed.
void adviseHugePages(void* data, std::size_t size);

// Memory for `size` bytes. A block of at least a huge page is aligned to huge pages and advised
// as such; a smaller one is ordinary memory. Release it with releaseLargeBlock and the same size.
void* allocateLargeBlock(std::size_t size);
void releaseLargeBlock(void* data, std::size_t size) noexcept;

// An allocator for containers whose large arrays are read at random places.
template <class T>
struct LargeBlockAllocator {
    using value_type = T;
    LargeBlockAllocator() = default;
    template <class U>
    LargeBlockAllocator(const LargeBlockAllocator<U>&) noexcept {}
    T* allocate(std::size_t n) { return static_cast<T*>(allocateLargeBlock(n * sizeof(T))); }
    void deallocate(T* data, std::size_t n) noexcept { releaseLargeBlock(data, n * sizeof(T)); }
    template <class U>
    bool operator==(const LargeBlockAllocator<U>&) const noexcept {
        return true;
    }
};

}  // namespace model
