#pragma once
// An animated property that carries only its argument number.

#include <string>
#include <string_view>

#include "model/IProperty.h"

namespace model {

class ArgumentProperty final : public IAnimatedProperty {
public:
    static constexpr std::string_view kClassName = "model::ArgumentProperty";

    ArgumentProperty() : IAnimatedProperty("AARG") {}

    std::string_view className() const override { return kClassName; }
    std::string toText() const override;
    void accept(IPropertyVisitor& visitor) override;
    void load(io::IBinaryFileR& file) override;
    void save(io::IBinaryFileW& file) const override;
    bool equals(const IProperty& other) const override;
};

}  // namespace model
