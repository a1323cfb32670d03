#include "model/PropertyList.h"

#include <algorithm>

#include "model/Property.h"

namespace model {

void setProperty(PropertyList& list, Ptr<IProperty> property) {
    if (!property) {
        return;
    }
    auto it = std::find_if(list.begin(), list.end(),
                           [&](const Ptr<IProperty>& p) { return p && p->name == property->name; });
    if (it != list.end()) {
        *it = std::move(property);
    } else {
        list.push_back(std::move(property));
    }
}

Ptr<IProperty> findProperty(const PropertyList& list, std::string_view name) {
    for (const Ptr<IProperty>& p : list) {
        if (p && p->name == name) {
            return p;
        }
    }
    return {};
}

namespace {
template <class T>
bool getTyped(const PropertyList& list, std::string_view name, T& out) {
    const auto* p = findPropertyAs<Property<T>>(list, name);
    if (!p) {
        return false;
    }
    out = p->value;
    return true;
}
}  // namespace

bool getProperty(const PropertyList& list, std::string_view name, float& out) {
    return getTyped(list, name, out);
}
bool getProperty(const PropertyList& list, std::string_view name, std::uint32_t& out) {
    return getTyped(list, name, out);
}
bool getProperty(const PropertyList& list, std::string_view name, osg::Vec2f& out) {
    return getTyped(list, name, out);
}
bool getProperty(const PropertyList& list, std::string_view name, osg::Vec3f& out) {
    return getTyped(list, name, out);
}
bool getProperty(const PropertyList& list, std::string_view name, osg::Vec4f& out) {
    return getTyped(list, name, out);
}
bool getProperty(const PropertyList& list, std::string_view name, std::string& out) {
    return getTyped(list, name, out);
}

bool equalPropertyLists(const PropertyList& a, const PropertyList& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (const Ptr<IProperty>& x : a) {
        bool found = std::any_of(b.begin(), b.end(), [&](const Ptr<IProperty>& y) {
            if (!x || !y) {
                return !x && !y;
            }
            return x->equals(*y);
        });
        if (!found) {
            return false;
        }
    }
    return true;
}

void forEachArgument(const PropertyList& list, const std::function<void(std::uint32_t)>& f) {
    for (const Ptr<IProperty>& p : list) {
        if (p && p->isAnimated()) {
            std::uint32_t argument = static_cast<const IAnimatedProperty&>(*p).argument;
            if (argument < IAnimatedProperty::kNoArgument) {
                f(argument);
            }
        }
    }
}

}  // namespace model
