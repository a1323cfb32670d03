#pragma once
// Intrusive reference counting: the base of every model object.

#include <atomic>
#include <cstdint>

namespace nq {

// One atomic 32-bit counter, starting at 0. Ptr raises and lowers it.
struct SharedLite {
    mutable std::atomic<std::uint32_t> refCount{0};

    SharedLite() = default;
    // A copy is a new object: it starts unowned, whatever the source's count.
    SharedLite(const SharedLite&) noexcept {}
    SharedLite& operator=(const SharedLite&) noexcept { return *this; }
};

// SharedLite with a virtual destructor, so that a deleter may destroy through the base.
struct Shared : SharedLite {
    Shared() = default;
    Shared(const Shared&) = default;
    Shared& operator=(const Shared&) = default;
    virtual ~Shared() = default;
};

}  // namespace nq
