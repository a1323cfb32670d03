#include "usertext/WriteUserText.h"

#include <fmt/format.h>

namespace lu {

void writeUserText(const model::PropertyList& properties, const FloatArrays& arrays, std::string& out) {
    for (const model::Ptr<model::IProperty>& property : properties) {
        if (property) {
            out += "\r\n";
            out += property->toText();
        }
    }
    for (const auto& [name, numbers] : arrays) {
        out += "\r\n";
        out += name;
        out += " = array(";
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            if (i > 0) {
                out += ',';
            }
            out += fmt::format("{:f}", numbers[i]);
        }
        out += ");";
    }
}

}  // namespace lu
