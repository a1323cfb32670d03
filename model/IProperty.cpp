#include "model/IProperty.h"

#include <algorithm>

#include "core/ExtException.h"
#include "model/io/IBinaryFileR.h"
#include "model/io/IBinaryFileW.h"

namespace model {

IProperty::IProperty(std::string_view fourLetters) {
    std::copy_n(fourLetters.begin(), std::min<std::size_t>(fourLetters.size(), tag.size()), tag.begin());
}

void IProperty::saveHead(io::IBinaryFileW& file) const {
    file.writeString(className());
    file.writeString(name);
}

void IProperty::loadHead(io::IBinaryFileR& file) {
    std::string stored = file.readString();
    if (stored != className()) {
        throw nq::ExtException("Property record of class \"" + stored + "\" read as \"" +
                               std::string(className()) + "\".");
    }
    name = file.readString();
}

bool IProperty::sameKind(const IProperty& other) const {
    return name == other.name && className() == other.className();
}

}  // namespace model
