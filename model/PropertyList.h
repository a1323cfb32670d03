#pragma once
// The property list that nodes and materials carry, and the operations they share on it.

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/Math.h"
#include "model/IProperty.h"

namespace model {

using PropertyList = std::vector<Ptr<IProperty>>;

// Replaces, in place, the first property with the same name; appends when there is none.
// An empty pointer is ignored.
void setProperty(PropertyList& list, Ptr<IProperty> property);

// The first property with that name, or an empty pointer.
Ptr<IProperty> findProperty(const PropertyList& list, std::string_view name);

// The first property with that name if it is of class P; null when the name is absent or the
// class differs.
template <class P>
P* findPropertyAs(const PropertyList& list, std::string_view name) {
    return dynamic_cast<P*>(findProperty(list, name).get());
}

// Typed getters: false when the name is absent or the property is of another class; the output
// is left as it is then.
bool getProperty(const PropertyList& list, std::string_view name, float& out);
bool getProperty(const PropertyList& list, std::string_view name, std::uint32_t& out);
bool getProperty(const PropertyList& list, std::string_view name, osg::Vec2f& out);
bool getProperty(const PropertyList& list, std::string_view name, osg::Vec3f& out);
bool getProperty(const PropertyList& list, std::string_view name, osg::Vec4f& out);
bool getProperty(const PropertyList& list, std::string_view name, std::string& out);

// Order-free equality: same size, and each element of a equals some element of b.
bool equalPropertyLists(const PropertyList& a, const PropertyList& b);

// Calls f with the argument of every animated property that is bound to one.
void forEachArgument(const PropertyList& list, const std::function<void(std::uint32_t)>& f);

}  // namespace model
