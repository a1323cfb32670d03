#include "model/Property.h"

#include <type_traits>

#include "model/IPropertyVisitor.h"
#include "model/PropertyValue.h"
#include "model/io/IBinaryFileW.h"

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
    if constexpr (std::is_same_v<T, std::string>) {
        saveHead(file);
        writeValue(file, value);
    } else {
        // A number or a vector of floats stands in the file as it stands in memory: the whole
        // record goes to the sink in one call.
        static_assert(std::is_trivially_copyable_v<T> && sizeof(T) % 4 == 0);
        file.writeNamedValue(className(), name, &value, sizeof value);
    }
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
