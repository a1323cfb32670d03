#include "model/Property.h"

#include "model/IPropertyVisitor.h"
#include "model/PropertyValue.h"

namespace model {

template <class T>
std::string Property<T>::toText() const {
    return name + " = " + valueText(value) + ";";
}

template <class T>
void Property<T>::accept(IPropertyVisitor& visitor) {
    visitor.visit(*this);
}

template <class T>
void Property<T>::load(io::IBinaryFileR& file) {
    loadHead(file);
    readValue(file, value);
}

template <class T>
void Property<T>::save(io::IBinaryFileW& file) const {
    saveHead(file);
    writeValue(file, value);
}

template <class T>
bool Property<T>::equals(const IProperty& other) const {
    if (!sameKind(other)) {
        return false;
    }
    return valuesEqual(value, static_cast<const Property&>(other).value);
}

template class Property<float>;
template class Property<std::uint32_t>;
template class Property<osg::Vec2f>;
template class Property<osg::Vec3f>;
template class Property<osg::Vec4f>;
template class Property<std::string>;

}  // namespace model
