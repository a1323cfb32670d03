#pragma once
// The animated property classes: keys of (time, value) along one argument.

#include <string>
#include <string_view>
#include <vector>

#include "model/IProperty.h"
#include "model/PropertyTraits.h"
#include "model/PropertyTypes.h"

namespace model {

template <class T>
struct AnimationKey {
    double time = 0.0;
    T value{};
    bool operator==(const AnimationKey&) const = default;
};

template <class T>
class AnimatedProperty final : public IAnimatedProperty {
public:
    using value_type = T;
    using Key = AnimationKey<T>;
    static constexpr std::string_view kClassName = PropertyTraits<T>::animatedClassName;

    AnimatedProperty() : IAnimatedProperty(PropertyTraits<T>::animatedTag) {}

    std::string_view className() const override { return kClassName; }
    std::string toText() const override;
    void accept(IPropertyVisitor& visitor) override;
    void load(io::IBinaryFileR& file) override;
    void save(io::IBinaryFileW& file) const override;
    bool equals(const IProperty& other) const override;

    std::vector<Key> keys;
};

extern template class AnimatedProperty<float>;
extern template class AnimatedProperty<osg::Vec2f>;
extern template class AnimatedProperty<osg::Vec3f>;
extern template class AnimatedProperty<osg::Vec4f>;

}  // namespace model
