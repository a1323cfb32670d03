// Reading and writing the settings file. Each value stands on a line of its own; booleans are "0"
// or "1", numbers decimal, texts UTF-8, the model scale its label. The first line holds the layout
// version; lines came and went between versions, and every older layout is still read.

#include <fmt/format.h>

#include <fstream>
#include <limits>
#include <system_error>

#include "core/NativeDriver.h"
#include "core/Utf8.h"
#include "exporter/UserSettings.h"
#include "host/HostServices.h"

namespace {

constexpr uint32_t kFileVersion = 11;
constexpr uint32_t kAnyVersion = std::numeric_limits<uint32_t>::max();
// Longest text kept from a line, in bytes of UTF-8.
constexpr std::size_t kMaxTextBytes = 255;

enum class Form {
    Bool,           // "0" or "1"
    Number,         // unsigned decimal of the field's width
    ClampedNumber,  // as Number, brought down to the largest value of the field's choices
    Label,          // the label of one of the field's choices
    Text,           // the rest of the line, UTF-8
    Float,          // only in old layouts, never a field
    SignedNumber,   // only in old layouts, never a field
};

struct FileLine {
    std::string_view option;  // the field; empty for a line that is written as `written` and ignored
    Form form;
    uint32_t fromVersion = 0;
    uint32_t toVersion = kAnyVersion;
    int written = 0;
};

// Every line after the version line, in file order, with the layout versions that hold it.
constexpr FileLine kLines[] = {
    {"legacyFlag", Form::Bool},
    {"smoothNormals", Form::ClampedNumber},
    {"runViewerAfterExport", Form::Bool},
    {"viewerPath", Form::Text},
    {"viewerArgs", Form::Text},
    {"viewerWorkDir", Form::Text},
    {{}, Form::Bool, 0, kAnyVersion, 1},
    {{}, Form::Bool, 0, kAnyVersion, 1},
    {{}, Form::Float, 0, 5},
    {{}, Form::SignedNumber, 0, 9},
    {"modelScale", Form::Label, 3},
    {"exportHiddenObjects", Form::Bool, 4},
    {"errorOnInvalidUserDefs", Form::Bool, 5},
    {{}, Form::Bool, 6, kAnyVersion, 1},
    {"showExportStat", Form::Bool, 7},
    {"showNodeInfo", Form::Bool, 8},
    {{}, Form::Bool, 9, kAnyVersion, 0},
    {"exportVersion", Form::Number, 11},
};

bool holds(const FileLine& line, uint32_t version) {
    return version >= line.fromVersion && version <= line.toVersion;
}

// Reads values with formatted input and whole text lines, keeping track of whether the last
// formatted value left the rest of its line unread. A failed read leaves the target untouched
// and the stream failed, so nothing after it is read either.
class LineReader {
public:
    explicit LineReader(std::istream& in) : in_(in) {}

    template <class T>
    bool value(T& target) {
        T read{};
        if (!(in_ >> read)) {
            return false;
        }
        target = read;
        midLine_ = true;
        return true;
    }

    bool text(std::string& target) {
        if (midLine_) {
            in_.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
            midLine_ = false;
        }
        std::string line;
        if (!std::getline(in_, line)) {
            return false;
        }
        // A file edited on another system may end its lines with CR LF.
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        line.resize(nq::utf8PrefixLength(line, kMaxTextBytes));
        target = std::move(line);
        return true;
    }

private:
    std::istream& in_;
    bool midLine_ = false;
};

template <class T>
bool readNumber(LineReader& reader, UserSettings& settings, const SettingInfo& info, bool clamp) {
    T* field = settingField<T>(settings, info);
    T value{};
    if (!field || !reader.value(value)) {
        return false;
    }
    if (clamp && !info.choices.empty()) {
        value = std::min<T>(value, static_cast<T>(info.choices.back().value));
    }
    *field = value;
    return true;
}

bool readLine(LineReader& reader, const FileLine& line, UserSettings& settings) {
    const SettingInfo* info = line.option.empty() ? nullptr : UserSettings::findOption(line.option);
    switch (line.form) {
        case Form::Bool: {
            bool ignored = false;
            bool* field = info ? settingField<bool>(settings, *info) : &ignored;
            return field && reader.value(*field);
        }
        case Form::Number:
        case Form::ClampedNumber: {
            bool clamp = line.form == Form::ClampedNumber;
            return info && (std::holds_alternative<uint16_t UserSettings::*>(info->member)
                                ? readNumber<uint16_t>(reader, settings, *info, clamp)
                                : readNumber<uint32_t>(reader, settings, *info, clamp));
        }
        case Form::Label: {
            std::string label;
            if (!info || !reader.text(label)) {
                return false;
            }
            for (const SettingChoice& choice : info->choices) {
                if (choice.label == label) {
                    setSettingNumber(settings, *info, choice.value);
                }
            }
            return true;
        }
        case Form::Text: {
            std::wstring* field = info ? settingField<std::wstring>(settings, *info) : nullptr;
            std::string text;
            if (!field || !reader.text(text)) {
                return false;
            }
            *field = nq::utf8ToWide(text);
            return true;
        }
        case Form::Float: {
            float ignored = 0;
            return reader.value(ignored);
        }
        case Form::SignedNumber: {
            long long ignored = 0;
            return reader.value(ignored);
        }
    }
    return false;
}

std::string lineText(const FileLine& line, const UserSettings& settings) {
    const SettingInfo* info = line.option.empty() ? nullptr : UserSettings::findOption(line.option);
    if (!info) {
        return std::to_string(line.written);
    }
    if (const bool* flag = settingField<bool>(settings, *info)) {
        return *flag ? "1" : "0";
    }
    if (const std::wstring* text = settingField<std::wstring>(settings, *info)) {
        return nq::wideToUtf8(*text);
    }
    uint32_t number = settingNumber(settings, *info).value_or(0);
    if (line.form == Form::Label) {
        // An index outside the table is written as the default so the file stays readable.
        auto index = choiceIndex(*info, number);
        auto fallback = choiceIndex(*info, settingNumber(UserSettings{}, *info).value_or(0));
        return std::string(info->choices[index.value_or(fallback.value_or(0))].label);
    }
    return std::to_string(number);
}

}  // namespace

void UserSettings::load(const std::filesystem::path& file) {
    std::ifstream in(file);
    if (!in) {
        return;
    }
    LineReader reader(in);
    uint32_t version = 0;
    if (!reader.value(version)) {
        return;
    }
    for (const FileLine& line : kLines) {
        if (line.form == Form::Label) {
            // A label that matches nothing, or a layout without one, gives the default.
            if (const SettingInfo* info = findOption(line.option)) {
                setSettingNumber(*this, *info, settingNumber(UserSettings{}, *info).value_or(0));
            }
        }
        if (holds(line, version) && !readLine(reader, line, *this)) {
            return;
        }
    }
}

bool UserSettings::save(const std::filesystem::path& file) const {
    std::string content = fmt::format("{}\n", kFileVersion);
    for (const FileLine& line : kLines) {
        if (holds(line, kFileVersion)) {
            content += lineText(line, *this);
            content += '\n';
        }
    }

    // The native driver writes beside the target and renames over it, so a failed save never
    // leaves half a file.
    std::error_code error;
    std::filesystem::create_directories(file.parent_path(), error);
    bool written = nqvfs::NativeDriver({}).writeFile(file.string(), content.data(), content.size()).ok();
    if (!written) {
        host::messageBox("NQF Plugin Warning",
                         fmt::format("NQF Warning: User settings file was not saved.\nThe configuration "
                                     "directory could not be created or accessed.\n{0}",
                                     file.string()));
    }
    return written;
}
