#include "usertext/AnimatedPropertiesHandler.h"

#include <cstdint>
#include <string>
#include <vector>

#include "core/ExtException.h"
#include "model/PropertyCreators.h"
#include "usertext/NumberText.h"

namespace lu {
namespace {

[[noreturn]] void wrongCount(const std::string& kind) {
    throw nq::ExtException("Wrong arguments number in '" + kind + "'.");
}

// The layout of one animated vector form: each key is a time, the tag and N components.
template <int N>
struct VectorForm;
template <>
struct VectorForm<2> {
    static constexpr const char* kind = "animation_vec2";
    static constexpr const char* tag = "vec2";
    // The tag check walks in steps of 3 though a key has 4 values: position 6 of a list with two
    // keys is the second time, so this form takes exactly one key. Kept as it is.
    static constexpr std::size_t tagStep = 3;
    static bool countAllowed(std::size_t n) { return n >= 6 && n % 2 == 0; }
};
template <>
struct VectorForm<3> {
    static constexpr const char* kind = "animation_vec3";
    static constexpr const char* tag = "vec3";
    static constexpr std::size_t tagStep = 5;
    // Odd counts only, which with 5 values a key lets through an odd number of keys. Kept as it is.
    static bool countAllowed(std::size_t n) { return n >= 7 && n % 2 == 1; }
};
template <>
struct VectorForm<4> {
    static constexpr const char* kind = "animation_vec4";
    static constexpr const char* tag = "vec4";
    static constexpr std::size_t tagStep = 6;
    static bool countAllowed(std::size_t n) { return n >= 8 && n % 2 == 0; }
};

}  // namespace

const HandlerNames& AnimatedPropertiesHandler::names() {
    static const HandlerNames table{"argument",       "animation",      "animation_vec2",
                                    "animation_vec3", "animation_vec4", "anim"};
    return table;
}

bool AnimatedPropertiesHandler::accepts(const std::string&, const Values& values) {
    return names().acceptsKind(values);
}

void AnimatedPropertiesHandler::process(const std::string& name, const Values& values) {
    if (values.empty()) {
        return;
    }
    const std::string& kind = values.front();
    if (kind == "argument") {
        processArgument(name, values);
    } else if (kind == "animation") {
        processFloatKeys(name, values, true);
    } else if (kind == "anim") {
        processFloatKeys(name, values, false);
    } else if (kind == "animation_vec2") {
        processVectorKeys<osg::Vec2f, 2>(name, values);
    } else if (kind == "animation_vec3") {
        processVectorKeys<osg::Vec3f, 3>(name, values);
    } else if (kind == "animation_vec4") {
        processVectorKeys<osg::Vec4f, 4>(name, values);
    }
}

void AnimatedPropertiesHandler::processArgument(const std::string& name, const Values& values) {
    if (values.size() != 2) {
        wrongCount("argument");
    }
    const int argument = argumentFromText(values[1]);
    if (argument < 0) {
        throw nq::ExtException("Invalid argument in property '" + name + "'.");
    }
    if (auto property = model::createArgumentProperty(name, static_cast<std::uint32_t>(argument))) {
        destination_.push_back(std::move(property));
    }
}

// "animation": kind, arg, then (time, value) pairs. "anim": kind, then pairs, and no argument;
// its count rule differs but its failure text is the one of "animation".
void AnimatedPropertiesHandler::processFloatKeys(const std::string& name, const Values& values,
                                                 bool withArgument) {
    const std::size_t n = values.size();
    const std::size_t first = withArgument ? 2 : 1;
    if (n < first + 2 || (n - first) % 2 != 0) {
        wrongCount("animation");
    }
    std::vector<model::AnimatedFloatProperty::Key> keys;
    keys.reserve((n - first) / 2);
    for (std::size_t i = first; i + 1 < n; i += 2) {
        keys.push_back({numberFromText<double>(values[i]), numberFromText<float>(values[i + 1])});
    }
    model::Ptr<model::AnimatedFloatProperty> property;
    if (withArgument) {
        const auto argument = static_cast<std::uint32_t>(argumentFromText(values[1]));
        property =
            model::createAnimatedProperty<model::AnimatedFloatProperty>(name, argument, std::move(keys));
    } else {
        property = model::createAnimatedProperty<model::AnimatedFloatProperty>(
            name, model::IAnimatedProperty::kNoArgument, std::move(keys));
    }
    if (property) {
        destination_.push_back(std::move(property));
    }
}

template <class Vec, int N>
void AnimatedPropertiesHandler::processVectorKeys(const std::string& name, const Values& values) {
    using Form = VectorForm<N>;
    const std::size_t n = values.size();
    if (!Form::countAllowed(n)) {
        wrongCount(Form::kind);
    }
    for (std::size_t at = 3; at < n; at += Form::tagStep) {
        if (values[at] != Form::tag) {
            throw nq::ExtException(std::string("Invalid animation set in '") + Form::kind + "'.");
        }
    }

    constexpr std::size_t kGroup = N + 2;  // time, tag, components
    std::vector<typename model::AnimatedProperty<Vec>::Key> keys;
    for (std::size_t at = 2; at < n; at += kGroup) {
        if (at + kGroup > n) {
            wrongCount(Form::tag);
        }
        Vec value;
        for (int i = 0; i < N; ++i) {
            value[i] = numberFromText<float>(values[at + 2 + static_cast<std::size_t>(i)]);
        }
        keys.push_back({numberFromText<double>(values[at]), value});
    }

    const int argument = argumentFromText(values[1]);
    if (argument < 0) {
        throw nq::ExtException("Parameter '" + name + "' must be positive.");
    }
    if (auto property = model::createAnimatedProperty<model::AnimatedProperty<Vec>>(
            name, static_cast<std::uint32_t>(argument), std::move(keys))) {
        destination_.push_back(std::move(property));
    }
}

}  // namespace lu
