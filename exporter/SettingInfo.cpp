#include "exporter/SettingInfo.h"

#include <algorithm>

#include "exporter/UserSettings.h"

std::optional<uint32_t> settingNumber(const UserSettings& settings, const SettingInfo& info) {
    if (const uint32_t* value = settingField<uint32_t>(settings, info)) {
        return *value;
    }
    if (const uint16_t* value = settingField<uint16_t>(settings, info)) {
        return *value;
    }
    return std::nullopt;
}

void setSettingNumber(UserSettings& settings, const SettingInfo& info, uint32_t value) {
    if (uint32_t* field = settingField<uint32_t>(settings, info)) {
        *field = value;
    } else if (uint16_t* field16 = settingField<uint16_t>(settings, info)) {
        *field16 = static_cast<uint16_t>(value);
    }
}

std::optional<std::size_t> choiceIndex(const SettingInfo& info, uint32_t value) {
    auto it = std::find_if(info.choices.begin(), info.choices.end(),
                           [&](const SettingChoice& choice) { return choice.value == value; });
    if (it == info.choices.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(it - info.choices.begin());
}
