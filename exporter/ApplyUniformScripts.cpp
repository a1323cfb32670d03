// The uniforms of a standard material: the shader's own script with the texts of its textures
// define them, then the material's override script may change the values of those it defined.

#include "core/ExtException.h"
#include "exporter/MaxHandler.h"
#include "exporter/MtlKeeper.h"
#include "exporter/ReportError.h"
#include "host/Mtl.h"
#include "usertext/AnimatedPropertiesHandler.h"
#include "usertext/ParseUserText.h"
#include "usertext/PropertiesHandler.h"

namespace exporter {
namespace {

lu::FuncHandlers uniformHandlers(MtlKeeper* keeper, host::Mtl* mtl, model::PropertyList& uniforms) {
    return {lu::FuncHandlerPtr(new lu::PropertiesHandler(uniforms)),
            lu::FuncHandlerPtr(new lu::AnimatedPropertiesHandler(uniforms)),
            lu::FuncHandlerPtr(new MaxHandler(keeper, mtl, uniforms))};
}

}  // namespace

void MtlKeeper::applyUniformScripts(host::Mtl* mtl, model::PropertiesSet& material,
                                    const std::string& uniformScript, const std::string& gatheredText,
                                    const std::string& overrideScript) {
    model::PropertyList overrides;
    try {
        lu::parseUserText(uniformScript + gatheredText, uniformHandlers(this, mtl, material.uniforms));
        lu::parseUserText(overrideScript, uniformHandlers(this, mtl, overrides));
    } catch (const nq::ExtException& e) {
        reportError("Uniforms: %s Material: %s.\tFile: %s:%d.", e.message().c_str(), mtl->GetName().c_str(),
                    kMtlKeeperSource, __LINE__);
    }
    std::string invalid;
    for (const auto& property : overrides) {
        auto it = std::find_if(material.uniforms.begin(), material.uniforms.end(), [&](const auto& uniform) {
            return uniform && uniform->name == property->name;
        });
        if (it != material.uniforms.end()) {
            *it = property;
            continue;
        }
        invalid += (invalid.empty() ? "'" : ", '") + property->name + "'";
    }
    if (!invalid.empty()) {
        std::string text =
            "The following uniforms: " + invalid + " are ivalid. Material: " + mtl->GetName() + ".";
        reportError("%s\tFile: %s:%d.", text.c_str(), kMtlKeeperSource, __LINE__);
    }
}

}  // namespace exporter
