#include "exporter/CheckText.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "exporter/NodeSettings.h"

namespace exporter {

namespace {

void appendProperties(std::string& out, const char* title, const model::PropertyList& list) {
    out += title;
    out += " (" + std::to_string(list.size()) + ")\n";
    for (const model::Ptr<model::IProperty>& property : list) {
        out += "  " + property->toText() + "\n";
    }
}

}  // namespace

std::string describeNodeText(std::string_view text, std::uint32_t smoothNormalsSetting) {
    NodeSettings settings;
    settings.clear(smoothNormalsSetting == 1 || smoothNormalsSetting == 3);
    parseNodeSettings(text, settings, smoothNormalsSetting);

    char flags[16];
    std::snprintf(flags, sizeof flags, "0x%X", settings.flags);
    std::string out = "TYPE: " + std::string(flags);
    const std::string words = nodeTypeWords(settings.flags);
    if (!words.empty()) {
        out += " (" + words + ")";
    }
    out += "\n";
    out += std::string("SMOOTH_NORMALS: ") + (settings.smoothNormals ? "on" : "off") + "\n";
    out += std::string("NO_CONNECTOR: ") + (settings.noConnector ? "on" : "off") + "\n";
    out += "DAMAGE_ARGUMENT: " + std::to_string(settings.damageArgument) + "\n";
    appendProperties(out, "Properties", settings.properties);
    appendProperties(out, "Animated properties", settings.animatedProperties);

    // The arrays in name order, so that the description does not depend on hashing.
    std::vector<std::string> names;
    for (const auto& [name, values] : settings.arrays) {
        names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    out += "Arrays (" + std::to_string(names.size()) + ")\n";
    for (const std::string& name : names) {
        out += "  " + name + " = {";
        const std::vector<float>& values = settings.arrays.find(name)->second;
        for (std::size_t i = 0; i < values.size(); ++i) {
            char number[32];
            std::snprintf(number, sizeof number, "%s%g", i ? ", " : "", static_cast<double>(values[i]));
            out += number;
        }
        out += "}\n";
    }
    return out;
}

}  // namespace exporter
