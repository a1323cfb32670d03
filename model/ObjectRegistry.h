#pragma once
// The process-wide class registry: creates model objects by class name and keeps the list of the
// live objects it made.

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/Fnv1a.h"
#include "model/IObject.h"

namespace model {

// Factory of one concrete class.
class IregClass {
public:
    virtual ~IregClass() = default;
    // A new default-constructed object with a count of 0.
    virtual IObject* create() const = 0;
    // A new object constructed as a copy of source, with a count of 0.
    virtual IObject* copy(const IObject& source) const = 0;
};

template <class T>
class regClass final : public IregClass {
public:
    IObject* create() const override { return new T(); }
    IObject* copy(const IObject& source) const override { return new T(dynamic_cast<const T&>(source)); }
};

class ObjectRegistry {
public:
    static ObjectRegistry& instance();

    // A new object of the named class, or an empty pointer for an unknown name.
    Ptr<IObject> createObject(std::string_view className);
    // A copy of source made by the named class, or an empty pointer for an unknown name.
    Ptr<IObject> copyObject(const IObject& source, std::string_view className);
    // Removes the object from the live list: the last element moves into its slot.
    void forget(IObject* object);

    // Registers a factory under a name; a name already present gets the new factory and the
    // old one is deleted.
    void registerClass(std::string_view className, std::unique_ptr<IregClass> factory);
    template <class T>
    void registerClass(std::string_view className) {
        registerClass(className, std::make_unique<regClass<T>>());
    }
    bool isRegistered(std::string_view className) const;
    std::size_t classCount() const;

    // A snapshot of the live objects, in the registry's own order.
    std::vector<IObject*> objects() const;
    std::size_t objectCount() const;

    ObjectRegistry(const ObjectRegistry&) = delete;
    ObjectRegistry& operator=(const ObjectRegistry&) = delete;

    // Only for tests and for the singleton: a registry with the model classes registered.
    ObjectRegistry();
    ~ObjectRegistry();

private:
    Ptr<IObject> adopt(IObject* object);

    using ClassMap =
        std::unordered_map<std::string, std::unique_ptr<IregClass>, nq::Fnv1aHash, std::equal_to<>>;
    ClassMap classes_;
    mutable std::mutex lock_;
    // Each object's position here is kept in the object itself.
    std::vector<IObject*> objects_;
};

// Registers every class of the model under its file name. Defined beside the classes.
void registerModelClasses(ObjectRegistry& registry);

// Creates an object of the named class and casts it to T; empty if the name is unknown or the
// class is not a T.
template <class T>
Ptr<T> createAs(std::string_view className) {
    Ptr<IObject> object = ObjectRegistry::instance().createObject(className);
    return Ptr<T>(dynamic_cast<T*>(object.get()));
}

// The clone() of a concrete class: a registry copy under its own key.
template <class T>
Ptr<T> cloneAs(const T& self, std::string_view className) {
    Ptr<IObject> object = ObjectRegistry::instance().copyObject(self, className);
    return Ptr<T>(dynamic_cast<T*>(object.get()));
}

}  // namespace model
