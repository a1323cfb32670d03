#include "model/ArgumentProperty.h"

#include <fmt/format.h>

#include "model/IPropertyVisitor.h"
#include "model/io/IBinaryFileR.h"
#include "model/io/IBinaryFileW.h"

namespace model {

std::string ArgumentProperty::toText() const {
    return fmt::format("{} = argument({});", name, argument);
}

void ArgumentProperty::accept(IPropertyVisitor& visitor) {
    visitor.visit(*this);
}

void ArgumentProperty::load(io::IBinaryFileR& file) {
    loadHead(file);
    argument = file.readU32();
}

void ArgumentProperty::save(io::IBinaryFileW& file) const {
    file.writeNamedValue(className(), name, &argument, sizeof argument);
}

bool ArgumentProperty::equals(const IProperty& other) const {
    return sameKind(other) && argument == static_cast<const ArgumentProperty&>(other).argument;
}

}  // namespace model
