#pragma once
// The fields of UserSettings described as data: each field's name, where it is held and, for a
// field that takes one of a fixed list of values, that list. The settings file, the options
// dialog and command lines all work from this one description.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

class UserSettings;

// One item of a fixed list: the label shown to the user and the value it stands for.
struct SettingChoice {
    std::string_view label;
    uint32_t value;
};

struct SettingInfo {
    using Member = std::variant<bool UserSettings::*, uint16_t UserSettings::*, uint32_t UserSettings::*,
                                double UserSettings::*, std::wstring UserSettings::*>;

    std::string_view name;  // the field's name; also the object name of its control in the dialog
    Member member;
    std::span<const SettingChoice> choices;  // empty when the value is not taken from a list
};

// The field of the given type, or null when the setting holds another type.
template <class T>
T* settingField(UserSettings& settings, const SettingInfo& info) {
    auto* member = std::get_if<T UserSettings::*>(&info.member);
    return member ? &(settings.**member) : nullptr;
}
template <class T>
const T* settingField(const UserSettings& settings, const SettingInfo& info) {
    auto* member = std::get_if<T UserSettings::*>(&info.member);
    return member ? &(settings.**member) : nullptr;
}

// The value of an unsigned integer setting; nothing for settings of other types.
std::optional<uint32_t> settingNumber(const UserSettings& settings, const SettingInfo& info);
// Sets an unsigned integer setting, narrowed to its type; other settings are left alone.
void setSettingNumber(UserSettings& settings, const SettingInfo& info, uint32_t value);
// The position of value in the setting's list of choices; nothing when it is not in the list.
std::optional<std::size_t> choiceIndex(const SettingInfo& info, uint32_t value);
