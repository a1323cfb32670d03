#include "model/ObjectRegistry.h"

namespace model {

void IObjectDeleter::operator()(IObject* object) const noexcept {
    if (object->registry) {
        object->registry->forget(object);
    }
    delete object;
}

ObjectRegistry& ObjectRegistry::instance() {
    // Constructed once, thread-safely, on first use.
    static ObjectRegistry registry;
    return registry;
}

ObjectRegistry::ObjectRegistry() {
    // Nobody can reach the registry while it is being built, so registration here needs no
    // lock beyond the one registerClass takes.
    classes_.max_load_factor(1.0f);
    classes_.rehash(8);
    registerModelClasses(*this);
}

ObjectRegistry::~ObjectRegistry() = default;

void ObjectRegistry::registerClass(std::string_view className, std::unique_ptr<IregClass> factory) {
    std::lock_guard<std::mutex> guard(lock_);
    auto it = classes_.find(className);
    if (it != classes_.end()) {
        it->second = std::move(factory);  // the old factory is deleted here
    } else {
        classes_.emplace(std::string(className), std::move(factory));
    }
}

bool ObjectRegistry::isRegistered(std::string_view className) const {
    std::lock_guard<std::mutex> guard(lock_);
    return classes_.find(className) != classes_.end();
}

std::size_t ObjectRegistry::classCount() const {
    std::lock_guard<std::mutex> guard(lock_);
    return classes_.size();
}

Ptr<IObject> ObjectRegistry::adopt(IObject* object) {
    object->registry = this;
    object->registrySlot_ = objects_.size();
    objects_.push_back(object);
    return Ptr<IObject>(object);
}

Ptr<IObject> ObjectRegistry::createObject(std::string_view className) {
    std::unique_lock<std::mutex> guard(lock_);
    auto it = classes_.find(className);
    if (it == classes_.end()) {
        return {};
    }
    IObject* object = it->second->create();
    Ptr<IObject> result = adopt(object);
    guard.unlock();
    return result;
}

Ptr<IObject> ObjectRegistry::copyObject(const IObject& source, std::string_view className) {
    std::unique_lock<std::mutex> guard(lock_);
    auto it = classes_.find(className);
    if (it == classes_.end()) {
        return {};
    }
    IObject* object = it->second->copy(source);
    Ptr<IObject> result = adopt(object);
    guard.unlock();
    return result;
}

void ObjectRegistry::forget(IObject* object) {
    std::lock_guard<std::mutex> guard(lock_);
    std::size_t slot = object->registrySlot_;
    if (slot >= objects_.size() || objects_[slot] != object) {
        return;
    }
    std::size_t last = objects_.size() - 1;
    if (slot != last) {
        IObject* moved = objects_[last];
        objects_[slot] = moved;
        moved->registrySlot_ = slot;
    }
    objects_.pop_back();
}

std::vector<IObject*> ObjectRegistry::objects() const {
    std::lock_guard<std::mutex> guard(lock_);
    return objects_;
}

std::size_t ObjectRegistry::objectCount() const {
    std::lock_guard<std::mutex> guard(lock_);
    return objects_.size();
}

}  // namespace model
