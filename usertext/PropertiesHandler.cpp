#include "usertext/PropertiesHandler.h"

#include <cstdint>

#include "core/ExtException.h"
#include "model/PropertyCreators.h"
#include "usertext/NumberText.h"

namespace lu {
namespace {

void requireCount(const Values& values, std::size_t count) {
    if (values.size() != count) {
        throw nq::ExtException("Wrong arguments number in '" + values.front() + "'.");
    }
}

// The components of a vector, values[1] to values[N].
template <class Vec, int N>
Vec vectorFromValues(const Values& values) {
    requireCount(values, N + 1);
    Vec v;
    for (int i = N - 1; i >= 0; --i) {
        v[i] = numberFromText<float>(values[static_cast<std::size_t>(i) + 1]);
    }
    return v;
}

}  // namespace

const HandlerNames& PropertiesHandler::names() {
    static const HandlerNames table{"float", "uint", "string", "vec2", "vec3", "vec4"};
    return table;
}

bool PropertiesHandler::accepts(const std::string&, const Values& values) {
    return names().acceptsKind(values);
}

void PropertiesHandler::process(const std::string& name, const Values& values) {
    if (values.empty()) {
        return;
    }
    const std::string& kind = values.front();
    model::Ptr<model::IProperty> property;
    if (kind == "float") {
        if (values.size() >= 2) {
            property = model::createFloatProperty(name, numberFromText<float>(values[1]));
        }
    } else if (kind == "uint") {
        requireCount(values, 2);
        property = model::createUIntProperty(name, numberFromText<std::uint32_t>(values[1]));
    } else if (kind == "string") {
        if (values.size() >= 2) {
            property = model::createStringProperty(name, values[1]);
        }
    } else if (kind == "vec2") {
        property = model::createVec2fProperty(name, vectorFromValues<osg::Vec2f, 2>(values));
    } else if (kind == "vec3") {
        property = model::createVec3fProperty(name, vectorFromValues<osg::Vec3f, 3>(values));
    } else if (kind == "vec4") {
        property = model::createVec4fProperty(name, vectorFromValues<osg::Vec4f, 4>(values));
    }
    if (property) {
        destination_.push_back(std::move(property));
    }
}

}  // namespace lu
