#pragma once
// Typed creators: a property made through the registry with its fields set at once. Each returns
// an empty pointer when the class is not registered.

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "model/AnimatedProperty.h"
#include "model/ArgumentProperty.h"
#include "model/ObjectRegistry.h"
#include "model/Property.h"

namespace model {

template <class P>
Ptr<P> createProperty(std::string_view name, typename P::value_type value) {
    Ptr<P> p = createAs<P>(P::kClassName);
    if (p) {
        p->name = std::string(name);  // via a temporary: g++ 12 misreports a direct assign (-Wrestrict)
        p->value = std::move(value);
    }
    return p;
}

template <class P>
Ptr<P> createAnimatedProperty(std::string_view name, std::uint32_t argument,
                              std::vector<typename P::Key> keys = {}) {
    Ptr<P> p = createAs<P>(P::kClassName);
    if (p) {
        p->name = std::string(name);  // via a temporary: g++ 12 misreports a direct assign (-Wrestrict)
        p->argument = argument;
        p->keys = std::move(keys);
    }
    return p;
}

inline Ptr<FloatProperty> createFloatProperty(std::string_view name, float value) {
    return createProperty<FloatProperty>(name, value);
}
inline Ptr<UIntProperty> createUIntProperty(std::string_view name, std::uint32_t value) {
    return createProperty<UIntProperty>(name, value);
}
inline Ptr<Vec2fProperty> createVec2fProperty(std::string_view name, const osg::Vec2f& value) {
    return createProperty<Vec2fProperty>(name, value);
}
inline Ptr<Vec3fProperty> createVec3fProperty(std::string_view name, const osg::Vec3f& value) {
    return createProperty<Vec3fProperty>(name, value);
}
inline Ptr<Vec4fProperty> createVec4fProperty(std::string_view name, const osg::Vec4f& value) {
    return createProperty<Vec4fProperty>(name, value);
}
inline Ptr<StringProperty> createStringProperty(std::string_view name, std::string value) {
    return createProperty<StringProperty>(name, std::move(value));
}
inline Ptr<ArgumentProperty> createArgumentProperty(std::string_view name, std::uint32_t argument) {
    Ptr<ArgumentProperty> p = createAs<ArgumentProperty>(ArgumentProperty::kClassName);
    if (p) {
        p->name = std::string(name);  // via a temporary: g++ 12 misreports a direct assign (-Wrestrict)
        p->argument = argument;
    }
    return p;
}

}  // namespace model
