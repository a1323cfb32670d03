#include "usertext/ArrayHandler.h"

#include "core/ExtException.h"
#include "usertext/NumberText.h"

namespace lu {

const HandlerNames& ArrayHandler::names() {
    static const HandlerNames table{"array"};
    return table;
}

bool ArrayHandler::accepts(const std::string&, const Values& values) {
    return names().acceptsKind(values);
}

void ArrayHandler::process(const std::string& name, const Values& values) {
    if (values.size() < 2) {
        throw nq::ExtException("Wrong arguments number in 'array'.");
    }
    if (values.front() != "array") {
        return;
    }
    std::vector<float> numbers;
    numbers.reserve(values.size() - 1);
    for (std::size_t i = 1; i < values.size(); ++i) {
        numbers.push_back(numberFromText<float>(values[i]));
    }
    destination_[name] = std::move(numbers);
}

}  // namespace lu
