#pragma once
// Uniforms whose values come from the scene material: a uniform script entry such as
// "diffuse = DIFFUSE_COLOR();" names one of the material's parameters, and the handler reads it,
// as a constant or, when an argument list controller drives it, as an animated property.

#include <string>
#include <string_view>

#include "host/Control.h"
#include "host/Mtl.h"
#include "model/PropertyList.h"
#include "usertext/FuncHandler.h"

namespace exporter {

class MtlKeeper;

// A handler of the material's own functions: offered an entry by its function name.
class MtlBaseHandler : public lu::FuncHandler {
public:
    virtual bool canHandle(const std::string& name, const std::string& functionName) = 0;
    virtual void handle(const std::string& name, const lu::Values& arguments) = 0;

    bool accepts(const std::string& name, const lu::Values& values) override {
        return !values.empty() && canHandle(name, values.front());
    }
    void process(const std::string& name, const lu::Values& values) override { handle(name, values); }
};

class MaxHandler : public MtlBaseHandler {
public:
    MaxHandler(MtlKeeper* keeper, host::Mtl* mtl, model::PropertyList& uniforms)
        : keeper(keeper), mtl(mtl), uniforms(uniforms) {}

    // True for the functions of the table; the uniform's name plays no part.
    bool canHandle(const std::string& name, const std::string& functionName) override;
    // Adds the uniform, replacing one of the same name in its place. Failures are nq::ExtException.
    void handle(const std::string& name, const lu::Values& arguments) override;

private:
    model::Ptr<model::IProperty> colorProperty(const std::string& name, int index, const char* pathName);
    model::Ptr<model::IProperty> shaderValueProperty(const std::string& name, int index,
                                                     const char* pathName);
    model::Ptr<model::IProperty> mapAmountProperty(const std::string& name, const char* label, int mapIndex);
    model::Ptr<model::IProperty> mapOffsetProperty(const std::string& name, int layer);

    MtlKeeper* keeper;
    host::Mtl* mtl;
    std::uint32_t reserved = 0;
    model::PropertyList& uniforms;
};

// Descends the sub-animatables of object by name, the first exact match at each level; null when
// a level has no children, no match, or a null child. No names: object itself.
host::Animatable* paramByPath(host::Animatable* object, std::initializer_list<std::string_view> names);

// The controller when it is a list controller of exactly class classId with at least one entry, one
// of which keeps keys; null otherwise.
host::ArgumentListControl* argumentListController(host::Animatable* controller, host::Class_ID classId);

}  // namespace exporter
