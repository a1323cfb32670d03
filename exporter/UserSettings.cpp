#include "exporter/UserSettings.h"

#include <algorithm>

#include "host/HostServices.h"

namespace {

constexpr SettingChoice kSmoothNormalsChoices[] = {
    {"Off", 0}, {"On", 1}, {"Marked, def. Off", 2}, {"Marked, def. On", 3}};

constexpr SettingChoice kModelScaleChoices[] = {{"100:1", 0}, {"50:1", 1}, {"25:1", 2},  {"20:1", 3},
                                                {"10:1", 4},  {"1:1", 5},  {"1:10", 6},  {"1:20", 7},
                                                {"1:25", 8},  {"1:50", 9}, {"1:100", 10}};
// The uniform scale of each model scale, by index.
constexpr double kModelScaleFactors[] = {0.01, 0.02, 0.04, 0.05, 0.1, 1.0, 10.0, 20.0, 25.0, 50.0, 100.0};
static_assert(std::size(kModelScaleFactors) == std::size(kModelScaleChoices));

constexpr SettingChoice kExportVersionChoices[] = {{"10 (recomended)", 10}, {"11 (devs only)", 11}};

}  // namespace

std::span<const SettingInfo> UserSettings::options() {
    using S = UserSettings;
    static const SettingInfo table[] = {
        {"legacyFlag", &S::legacyFlag_, {}},
        {"smoothNormals", &S::smoothNormals_, kSmoothNormalsChoices},
        {"runViewerAfterExport", &S::runViewerAfterExport_, {}},
        {"viewerPath", &S::viewerPath_, {}},
        {"viewerArgs", &S::viewerArgs_, {}},
        {"viewerWorkDir", &S::viewerWorkDir_, {}},
        {"modelScale", &S::modelScale_, kModelScaleChoices},
        {"exportHiddenObjects", &S::exportHiddenObjects_, {}},
        {"errorOnInvalidUserDefs", &S::errorOnInvalidUserDefs_, {}},
        {"overrideScale", &S::overrideScale_, {}},
        {"overrideScaleValue", &S::overrideScaleValue_, {}},
        {"showExportStat", &S::showExportStat_, {}},
        {"showNodeInfo", &S::showNodeInfo_, {}},
        {"exportVersion", &S::exportVersion_, kExportVersionChoices},
    };
    return table;
}

const SettingInfo* UserSettings::findOption(std::string_view name) {
    auto all = options();
    auto it =
        std::find_if(all.begin(), all.end(), [&](const SettingInfo& info) { return info.name == name; });
    return it == all.end() ? nullptr : &*it;
}

nq::Matrixd UserSettings::modelTransform() const {
    nq::Matrixd axes;
    axes.m = {1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1};
    double s = modelScale_ < std::size(kModelScaleFactors) ? kModelScaleFactors[modelScale_] : 1.0;
    return axes * nq::scaleMatrix({s, s, s});
}

std::filesystem::path UserSettings::filePath() {
    return host::pluginConfigDir() + "/nqfexp.cfg";
}

UserSettings& userSettings() {
    // A function-local static is initialised once, and concurrent first calls wait for it.
    static UserSettings settings = [] {
        UserSettings loaded;
        loaded.load();
        return loaded;
    }();
    return settings;
}
