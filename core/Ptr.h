#pragma once
// nq::Ptr: a shared pointer over the intrusive count of nq::SharedLite.
//
// The pointer itself is atomic: release exchanges it with null before lowering the count, and
// assignment exchanges in the new value before releasing the old one, so a Ptr may be released
// from any thread. When the count falls from 1 to 0 the deleter D is called with the object.

#include <atomic>
#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

#include "core/Shared.h"

namespace nq {

// Plain deletion through the virtual destructor.
struct DefaultDeleter {
    template <class T>
    void operator()(T* object) const noexcept {
        delete object;
    }
};

template <class T, class D = DefaultDeleter>
class Ptr {
public:
    using element_type = T;
    using deleter_type = D;

    Ptr() noexcept = default;
    Ptr(std::nullptr_t) noexcept {}
    explicit Ptr(T* object) noexcept : ptr_(object) { addRef(object); }
    Ptr(const Ptr& other) noexcept : ptr_(other.get()) { addRef(ptr_.load(std::memory_order_relaxed)); }
    Ptr(Ptr&& other) noexcept : ptr_(other.ptr_.exchange(nullptr, std::memory_order_acq_rel)) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> Ptr(const Ptr<U, D>& other)
    noexcept : ptr_(other.get()) { addRef(ptr_.load(std::memory_order_relaxed)); }
    template <class U>
    requires std::is_convertible_v<U*, T*> Ptr(Ptr<U, D>&& other)
    noexcept : ptr_(other.detach()) {}
    ~Ptr() { reset(); }

    Ptr& operator=(const Ptr& other) noexcept {
        T* object = other.get();
        addRef(object);
        release(ptr_.exchange(object, std::memory_order_acq_rel));
        return *this;
    }
    Ptr& operator=(Ptr&& other) noexcept {
        if (this != &other) {
            release(ptr_.exchange(other.detach(), std::memory_order_acq_rel));
        }
        return *this;
    }
    Ptr& operator=(std::nullptr_t) noexcept {
        reset();
        return *this;
    }

    // Release: take the pointer out atomically, then lower the count.
    void reset() noexcept { release(ptr_.exchange(nullptr, std::memory_order_acq_rel)); }
    void reset(T* object) noexcept {
        addRef(object);
        release(ptr_.exchange(object, std::memory_order_acq_rel));
    }
    // Hands the reference over to the caller without lowering the count.
    T* detach() noexcept { return ptr_.exchange(nullptr, std::memory_order_acq_rel); }

    T* get() const noexcept { return ptr_.load(std::memory_order_acquire); }
    T* operator->() const noexcept { return get(); }
    T& operator*() const noexcept { return *get(); }
    explicit operator bool() const noexcept { return get() != nullptr; }

    friend bool operator==(const Ptr& a, const Ptr& b) noexcept { return a.get() == b.get(); }
    friend bool operator==(const Ptr& a, std::nullptr_t) noexcept { return a.get() == nullptr; }

private:
    static void addRef(T* object) noexcept {
        if (object) {
            static_cast<const SharedLite*>(object)->refCount.fetch_add(1, std::memory_order_relaxed);
        }
    }
    static void release(T* object) noexcept {
        if (object &&
            static_cast<const SharedLite*>(object)->refCount.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            D{}(object);
        }
    }

    std::atomic<T*> ptr_{nullptr};
};

// Casts between pointers of one deleter family.
template <class U, class T, class D>
Ptr<U, D> dynamicPtrCast(const Ptr<T, D>& p) noexcept {
    return Ptr<U, D>(dynamic_cast<U*>(p.get()));
}
template <class U, class T, class D>
Ptr<U, D> staticPtrCast(const Ptr<T, D>& p) noexcept {
    return Ptr<U, D>(static_cast<U*>(p.get()));
}

}  // namespace nq

template <class T, class D>
struct std::hash<nq::Ptr<T, D>> {
    std::size_t operator()(const nq::Ptr<T, D>& p) const noexcept { return std::hash<T*>{}(p.get()); }
};
