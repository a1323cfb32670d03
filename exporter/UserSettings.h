#pragma once
// The exporter's options: one process-wide record, made with the defaults and loaded from the
// settings file on first use, edited by the options dialog and read by the pipeline through the
// accessors below.

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

#include "core/Math.h"
#include "exporter/SettingInfo.h"

class UserSettings {
public:
    bool legacyFlag() const { return legacyFlag_; }
    void setLegacyFlag(bool value) { legacyFlag_ = value; }
    // 0 "Off", 1 "On", 2 "Marked, def. Off", 3 "Marked, def. On".
    uint32_t smoothNormals() const { return smoothNormals_; }
    void setSmoothNormals(uint32_t value) { smoothNormals_ = value; }
    bool runViewerAfterExport() const { return runViewerAfterExport_; }
    void setRunViewerAfterExport(bool value) { runViewerAfterExport_ = value; }
    const std::wstring& viewerPath() const { return viewerPath_; }
    void setViewerPath(std::wstring value) { viewerPath_ = std::move(value); }
    const std::wstring& viewerArgs() const { return viewerArgs_; }
    void setViewerArgs(std::wstring value) { viewerArgs_ = std::move(value); }
    const std::wstring& viewerWorkDir() const { return viewerWorkDir_; }
    void setViewerWorkDir(std::wstring value) { viewerWorkDir_ = std::move(value); }
    // Index into the table of model scales, 0 "100:1" to 10 "1:100"; 5 is "1:1".
    uint32_t modelScale() const { return modelScale_; }
    void setModelScale(uint32_t value) { modelScale_ = value; }
    bool exportHiddenObjects() const { return exportHiddenObjects_; }
    void setExportHiddenObjects(bool value) { exportHiddenObjects_ = value; }
    bool errorOnInvalidUserDefs() const { return errorOnInvalidUserDefs_; }
    void setErrorOnInvalidUserDefs(bool value) { errorOnInvalidUserDefs_ = value; }
    bool overrideScale() const { return overrideScale_; }
    void setOverrideScale(bool value) { overrideScale_ = value; }
    double overrideScaleValue() const { return overrideScaleValue_; }
    void setOverrideScaleValue(double value) { overrideScaleValue_ = value; }
    bool showExportStat() const { return showExportStat_; }
    void setShowExportStat(bool value) { showExportStat_ = value; }
    bool showNodeInfo() const { return showNodeInfo_; }
    void setShowNodeInfo(bool value) { showNodeInfo_ = value; }
    uint16_t exportVersion() const { return exportVersion_; }
    void setExportVersion(uint16_t value) { exportVersion_ = value; }

    // From scene space to model space: the axis change that takes (x, y, z) to (x, z, -y), scaled
    // uniformly by the factor of modelScale (an index outside the table counts as "1:1").
    nq::Matrixd modelTransform() const;

    // The settings file: "/nqfexp.cfg" appended to the host's plug-in configuration directory.
    static std::filesystem::path filePath();
    // Reads the settings file. A file that cannot be opened leaves the record as it is; a value
    // that cannot be read leaves it and every value after it as they are. Nothing is shown.
    void load() { load(filePath()); }
    void load(const std::filesystem::path& file);
    // Writes the settings file in the current layout. On failure shows a warning naming the file
    // and returns false; the record keeps its values.
    bool save() const { return save(filePath()); }
    bool save(const std::filesystem::path& file) const;

    // Run-time only, never saved: a bounding box helper's "maxFrame" asks for the animation keys to
    // be rescaled by this factor at the end of the export.
    bool keysRescaleEnabled = false;
    double keysRescaleFactor = 1.0;

    // Every field as data, in the order of the record.
    static std::span<const SettingInfo> options();
    static const SettingInfo* findOption(std::string_view name);

private:
    bool legacyFlag_ = true;
    uint32_t smoothNormals_ = 2;
    bool runViewerAfterExport_ = false;
    std::wstring viewerPath_;
    std::wstring viewerArgs_;
    std::wstring viewerWorkDir_;
    uint32_t modelScale_ = 5;
    bool exportHiddenObjects_ = false;
    bool errorOnInvalidUserDefs_ = false;
    bool overrideScale_ = false;
    double overrideScaleValue_ = 1.0;
    bool showExportStat_ = true;
    bool showNodeInfo_ = false;
    uint16_t exportVersion_ = 10;
};

// The process-wide record. The first call makes it and loads the settings file; concurrent first
// calls are safe and all get the same record.
UserSettings& userSettings();
