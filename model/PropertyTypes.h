#pragma once
// The eleven property classes by name, for code that only needs to mention them.

#include <cstdint>
#include <string>

#include "core/Math.h"

namespace model {

template <class T>
class Property;
template <class T>
class AnimatedProperty;
class ArgumentProperty;

using FloatProperty = Property<float>;
using UIntProperty = Property<std::uint32_t>;
using Vec2fProperty = Property<osg::Vec2f>;
using Vec3fProperty = Property<osg::Vec3f>;
using Vec4fProperty = Property<osg::Vec4f>;
using StringProperty = Property<std::string>;
using AnimatedFloatProperty = AnimatedProperty<float>;
using AnimatedVec2fProperty = AnimatedProperty<osg::Vec2f>;
using AnimatedVec3fProperty = AnimatedProperty<osg::Vec3f>;
using AnimatedVec4fProperty = AnimatedProperty<osg::Vec4f>;

}  // namespace model
