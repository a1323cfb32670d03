#include "exporter/ScriptPrimitives.h"

#include <string>

#include "core/ExtException.h"
#include "exporter/NQModelExporter.h"
#include "host/INode.h"
#include "host/Interface.h"
#include "model/PropertyCreators.h"
#include "model/PropertyList.h"
#include "usertext/ParseUserText.h"
#include "usertext/PropertiesHandler.h"
#include "usertext/WriteUserText.h"

namespace exporter {

host::ScriptValue ExportToNQF(std::span<const host::ScriptValue> arguments) {
    if (arguments.size() != 1) {
        throw host::ArgCountError("ExportToNQF", 1, static_cast<int>(arguments.size()));
    }
    const auto* path = std::get_if<std::string>(&arguments[0]);
    NQModelExporter exporter;
    exporter.DoExport(path ? path->c_str() : nullptr, nullptr, host::GetCOREInterface(), true, 0);
    return 1;
}

host::ScriptValue SetNodeType(std::span<const host::ScriptValue> arguments) {
    if (arguments.size() != 2) {
        throw host::ArgCountError("SetNodeType", 2, static_cast<int>(arguments.size()));
    }
    auto* const* node = std::get_if<host::INode*>(&arguments[0]);
    const auto* type = std::get_if<std::string>(&arguments[1]);
    if (!node || !*node || !type) {
        return 0;
    }
    const std::string text = (*node)->GetUserPropBuffer();
    if (text.empty()) {
        return 0;
    }
    try {
        model::PropertyList properties;
        lu::parseUserText(text, {lu::FuncHandlerPtr(new lu::PropertiesHandler(properties))});
        std::erase_if(properties,
                      [](const model::Ptr<model::IProperty>& p) { return p && p->name == "TYPE"; });
        properties.push_back(model::createStringProperty("TYPE", *type));
        std::string rewritten;
        lu::writeUserText(properties, {}, rewritten);
        (*node)->SetUserPropBuffer(rewritten);
    } catch (const nq::ExtException&) {
        // A text that does not parse is left as it is.
    }
    return 1;
}

}  // namespace exporter
