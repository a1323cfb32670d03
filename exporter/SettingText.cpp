#include "exporter/SettingText.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "core/Utf8.h"
#include "exporter/SettingInfo.h"
#include "exporter/UserSettings.h"

namespace {

std::optional<bool> parseBool(std::string_view text) {
    for (std::string_view yes : {"1", "true", "on", "yes"}) {
        if (text == yes) {
            return true;
        }
    }
    for (std::string_view no : {"0", "false", "off", "no"}) {
        if (text == no) {
            return false;
        }
    }
    return std::nullopt;
}

std::optional<std::uint64_t> parseUnsigned(std::string_view text) {
    std::uint64_t value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || text.empty()) {
        return std::nullopt;
    }
    return value;
}

std::string labels(const SettingInfo& info) {
    std::string list;
    for (const SettingChoice& choice : info.choices) {
        list += list.empty() ? "" : ", ";
        list += "\"" + std::string(choice.label) + "\" (" + std::to_string(choice.value) + ")";
    }
    return list;
}

// An unsigned setting's value: a label or number of its choices, or any number in range.
std::optional<std::string> applyNumber(UserSettings& settings, const SettingInfo& info, std::string_view name,
                                       std::string_view text, std::uint64_t limit) {
    if (!info.choices.empty()) {
        for (const SettingChoice& choice : info.choices) {
            if (choice.label == text) {
                setSettingNumber(settings, info, choice.value);
                return std::nullopt;
            }
        }
        const std::optional<std::uint64_t> number = parseUnsigned(text);
        if (number && *number <= limit && choiceIndex(info, static_cast<std::uint32_t>(*number))) {
            setSettingNumber(settings, info, static_cast<std::uint32_t>(*number));
            return std::nullopt;
        }
        return std::string(name) + " takes one of " + labels(info) + ", not \"" + std::string(text) + "\"";
    }
    const std::optional<std::uint64_t> number = parseUnsigned(text);
    if (!number || *number > limit) {
        return std::string(name) + " takes a whole number from 0 to " + std::to_string(limit) + ", not \"" +
               std::string(text) + "\"";
    }
    setSettingNumber(settings, info, static_cast<std::uint32_t>(*number));
    return std::nullopt;
}

}  // namespace

std::string settingNames() {
    std::string names;
    for (const SettingInfo& info : UserSettings::options()) {
        names += names.empty() ? "" : ", ";
        names += info.name;
    }
    return names;
}

std::optional<std::string> applySettingText(UserSettings& settings, std::string_view assignment) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string_view::npos) {
        return "expected NAME=VALUE, got \"" + std::string(assignment) + "\"";
    }
    const std::string_view name = assignment.substr(0, equals);
    const std::string_view text = assignment.substr(equals + 1);
    const SettingInfo* info = UserSettings::findOption(name);
    if (!info) {
        return "unknown setting \"" + std::string(name) + "\"; the settings are " + settingNames();
    }
    if (bool* field = settingField<bool>(settings, *info)) {
        const std::optional<bool> value = parseBool(text);
        if (!value) {
            return std::string(name) + " takes 0 or 1 (or true/false, on/off, yes/no), not \"" +
                   std::string(text) + "\"";
        }
        *field = *value;
        return std::nullopt;
    }
    if (settingField<std::uint16_t>(settings, *info)) {
        return applyNumber(settings, *info, name, text, std::numeric_limits<std::uint16_t>::max());
    }
    if (settingField<std::uint32_t>(settings, *info)) {
        return applyNumber(settings, *info, name, text, std::numeric_limits<std::uint32_t>::max());
    }
    if (double* field = settingField<double>(settings, *info)) {
        double value = 0;
        auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
        if (error != std::errc{} || end != text.data() + text.size() || text.empty() ||
            !std::isfinite(value)) {
            return std::string(name) + " takes a number, not \"" + std::string(text) + "\"";
        }
        *field = value;
        return std::nullopt;
    }
    if (std::wstring* field = settingField<std::wstring>(settings, *info)) {
        if (!nq::isValidUtf8(text)) {
            return std::string(name) + " takes UTF-8 text";
        }
        *field = nq::utf8ToWide(std::string(text));
        return std::nullopt;
    }
    return "setting \"" + std::string(name) + "\" cannot be set from text";
}
