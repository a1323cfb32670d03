#include "model/AnimatedProperty.h"

#include <cmath>

#include <fmt/format.h>

#include "model/IPropertyVisitor.h"
#include "model/PropertyValue.h"
#include "model/io/IBinaryFileR.h"
#include "model/io/IBinaryFileW.h"

namespace model {

template <class T>
std::string AnimatedProperty<T>::toText() const {
    std::string text = fmt::format("{} = animation({}, ", name, argument);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (i > 0) {
            text += ',';
        }
        text += fmt::format("{:f}", keys[i].time);
        text += ',';
        text += valueText(keys[i].value);
    }
    text += ");";
    return text;
}

template <class T>
void AnimatedProperty<T>::accept(IPropertyVisitor& visitor) {
    visitor.visit(*this);
}

template <class T>
void AnimatedProperty<T>::load(io::IBinaryFileR& file) {
    loadHead(file);
    argument = file.readU32();
    std::uint32_t count = file.readU32();
    std::vector<Key> loaded;
    for (std::uint32_t i = 0; i < count; ++i) {
        Key key;
        key.time = file.readF64();
        readValue(file, key.value);
        loaded.push_back(key);
    }
    keys = std::move(loaded);
}

template <class T>
void AnimatedProperty<T>::save(io::IBinaryFileW& file) const {
    // The argument and the key count go with the head in one call.
    const std::uint32_t argumentAndCount[2] = {argument, static_cast<std::uint32_t>(keys.size())};
    file.writeNamedValue(className(), name, argumentAndCount, sizeof argumentAndCount);
    for (const Key& key : keys) {
        file.writeF64(key.time);
        writeValue(file, key.value);
    }
}

template <class T>
bool AnimatedProperty<T>::equals(const IProperty& other) const {
    if (!sameKind(other)) {
        return false;
    }
    const auto& o = static_cast<const AnimatedProperty&>(other);
    if (argument != o.argument || keys.size() != o.keys.size()) {
        return false;
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (std::fabs(keys[i].time - o.keys[i].time) > static_cast<double>(kPropertyEpsilon) ||
            !valuesEqual(keys[i].value, o.keys[i].value)) {
            return false;
        }
    }
    return true;
}

template class AnimatedProperty<float>;
template class AnimatedProperty<osg::Vec2f>;
template class AnimatedProperty<osg::Vec3f>;
template class AnimatedProperty<osg::Vec4f>;

}  // namespace model
