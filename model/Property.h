#pragma once
// The static property classes: one value of type T under a name.

#include <string>
#include <string_view>

#include "model/IProperty.h"
#include "model/PropertyTraits.h"
#include "model/PropertyTypes.h"

namespace model {

template <class T>
class Property final : public IStaticProperty {
public:
    using value_type = T;
    static constexpr std::string_view kClassName = PropertyTraits<T>::className;

    Property() : IStaticProperty(PropertyTraits<T>::tag) {}
    Property(std::string_view propertyName, T propertyValue)
        : IStaticProperty(PropertyTraits<T>::tag), value(std::move(propertyValue)) {
        name = std::string(propertyName);
    }

    std::string_view className() const override { return kClassName; }
    std::string toText() const override;
    void accept(IPropertyVisitor& visitor) override;
    void load(io::IBinaryFileR& file) override;
    void save(io::IBinaryFileW& file) const override;
    bool equals(const IProperty& other) const override;

    T value{};
};

extern template class Property<float>;
extern template class Property<std::uint32_t>;
extern template class Property<osg::Vec2f>;
extern template class Property<osg::Vec3f>;
extern template class Property<osg::Vec4f>;
extern template class Property<std::string>;

}  // namespace model
