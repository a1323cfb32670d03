#pragma once
// Settings given as text, as a command line gives them: "name=value" for any field of
// UserSettings.

#include <optional>
#include <string>
#include <string_view>

class UserSettings;

// Applies one "name=value" to settings. Booleans take 0/1, true/false, on/off, yes/no; a setting
// with a list of choices takes a label ("1:1") or the number it stands for; numbers are decimal;
// texts are UTF-8. Returns the reason when the assignment cannot be applied, and then leaves
// settings unchanged.
std::optional<std::string> applySettingText(UserSettings& settings, std::string_view assignment);

// The names of all settings, comma separated, for help and error texts.
std::string settingNames();
