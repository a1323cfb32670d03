#pragma once
// Static properties from user text: "float", "uint", "string", "vec2", "vec3", "vec4".

#include "model/PropertyList.h"
#include "usertext/FuncHandler.h"
#include "usertext/HandlerNames.h"

namespace lu {

class PropertiesHandler : public FuncHandler {
public:
    static const HandlerNames& names();

    explicit PropertiesHandler(model::PropertyList& destination) : destination_(destination) {}

    bool accepts(const std::string& name, const Values& values) override;
    // Appends the property to the destination. A wrong number of values for "uint" and the
    // vectors fails with "Wrong arguments number in '<kind>'."; "float" and "string" with no
    // value make nothing.
    void process(const std::string& name, const Values& values) override;

private:
    model::PropertyList& destination_;
};

}  // namespace lu
