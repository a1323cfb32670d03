#pragma once
// The base of every model object, and the pointer type that holds them.

#include <cstddef>

#include "core/Ptr.h"
#include "core/Shared.h"

namespace model {

class ObjectRegistry;

class IObject : public nq::Shared {
public:
    IObject() = default;
    // A copy made directly is not known to any registry; the registry sets the field itself.
    IObject(const IObject& other) : nq::Shared(other) {}
    IObject& operator=(const IObject&) { return *this; }
    ~IObject() override = default;

    // The registry that made this object, or null for objects constructed directly.
    ObjectRegistry* registry = nullptr;

private:
    friend class ObjectRegistry;
    // The object's position in its registry's live list, so that forgetting it needs no search.
    std::size_t registrySlot_ = 0;
};

// Unhooks a dying object from the registry that made it, then destroys it.
struct IObjectDeleter {
    void operator()(IObject* object) const noexcept;
};

template <class T>
using Ptr = nq::Ptr<T, IObjectDeleter>;

}  // namespace model
