#pragma once
// Class names and tags of the property classes, per value type.

#include <cstdint>
#include <string>
#include <string_view>

#include "core/Math.h"

namespace model {

template <class T>
struct PropertyTraits;

template <>
struct PropertyTraits<float> {
    static constexpr std::string_view className = "model::Property<float>";
    static constexpr std::string_view tag = "FLT1";
    static constexpr std::string_view animatedClassName = "model::AnimatedProperty<float>";
    static constexpr std::string_view animatedTag = "AFL1";
};
template <>
struct PropertyTraits<osg::Vec2f> {
    static constexpr std::string_view className = "model::Property<osg::Vec2f>";
    static constexpr std::string_view tag = "FLT2";
    static constexpr std::string_view animatedClassName = "model::AnimatedProperty<osg::Vec2f>";
    static constexpr std::string_view animatedTag = "AFL2";
};
template <>
struct PropertyTraits<osg::Vec3f> {
    static constexpr std::string_view className = "model::Property<osg::Vec3f>";
    static constexpr std::string_view tag = "FLT3";
    static constexpr std::string_view animatedClassName = "model::AnimatedProperty<osg::Vec3f>";
    static constexpr std::string_view animatedTag = "AFL3";
};
template <>
struct PropertyTraits<osg::Vec4f> {
    static constexpr std::string_view className = "model::Property<osg::Vec4f>";
    static constexpr std::string_view tag = "FLT4";
    static constexpr std::string_view animatedClassName = "model::AnimatedProperty<osg::Vec4f>";
    static constexpr std::string_view animatedTag = "AFL4";
};
template <>
struct PropertyTraits<std::uint32_t> {
    static constexpr std::string_view className = "model::Property<unsigned int>";
    static constexpr std::string_view tag = "INT1";
};
template <>
struct PropertyTraits<std::string> {
    static constexpr std::string_view className = "model::Property<const char*>";
    static constexpr std::string_view tag = "STRG";
};

}  // namespace model
