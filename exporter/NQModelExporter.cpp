#include "exporter/NQModelExporter.h"

#include <cstdlib>
#include <cstring>
#include <limits>

#include "core/ExtException.h"
#include "core/Utf8.h"
#include "exporter/ExportNode.h"
#include "exporter/ReportError.h"
#include "exporter/UserSettings.h"
#include "host/BMMSplitFilename.h"
#include "host/Constants.h"
#include "host/HostServices.h"
#include "model/Node.h"
#include "model/ObjectRegistry.h"
#include "model/utils/CheckMaterials.h"
#include "model/utils/ModelBoxes.h"
#include "model/utils/ModelStatistics.h"
#include "model/utils/NumberNodeConverter.h"
#include "model/utils/Optimizers.h"
#include "model/utils/RenderNodePasses.h"
#include "usertext/ParamsLuaWrapper.h"

#ifndef NQ_VERSION_TEXT
#define NQ_VERSION_TEXT "0"
#endif

namespace exporter {

int exportInProgress = 0;

namespace {

// Where the exporter's messages say they come from.
constexpr const char* kSourcePath = "Exporter\\src\\NQModelExporter";

unsigned long progressCallback(void*) {
    return 0;
}

// The folding of the default target name. The host's own folding is by character; ASCII suffices
// for the byte-wise fold of a UTF-8 path's Latin letters and leaves every other byte as it is.
std::string foldedPath(std::string text) {
    return nq::utf8ToLower(text);
}

// The statistics as indented lines, one entry per line, children two spaces further in.
void appendStatistics(std::string& text, const model::utils::ModelStatistics& entry, int depth) {
    if (!entry.name.empty()) {
        text.append(static_cast<std::size_t>(depth) * 2, ' ');
        text += entry.name + ": " + entry.value + "\n";
        ++depth;
    }
    for (const model::utils::ModelStatistics& child : entry.children) {
        appendStatistics(text, child, depth);
    }
}

}  // namespace

nq::Matrixd coordinateConversion() {
    return userSettings().modelTransform();
}

NQModelExporter::~NQModelExporter() = default;

unsigned int NQModelExporter::Version() {
    const char* text = NQ_VERSION_TEXT;
    const char* dot = std::strrchr(text, '.');
    return dot ? static_cast<unsigned int>(std::atoi(dot + 1)) : 0u;
}

void NQModelExporter::ShowAbout(host::HWND parent) {
    if (ip) {
        ip->MessageBox(parent, LongDesc() + "\n" + CopyrightMessage(), "About",
                       host::MB_OK | host::MB_ICONINFORMATION);
    }
}

void NQModelExporter::reset() {
    // The bone keeper joins this clean-up when it is added to the exporter.
    consumedNodes.clear();
    normalSmoother.reset();
    mtlKeeper.clear();
    origin = nq::Vec3d{};
    rootNode = nullptr;
}

bool NQModelExporter::showErrorList() {
    std::vector<std::string> errors = takeErrors();
    if (errors.empty()) {
        return false;
    }
    std::string text;
    for (const std::string& error : errors) {
        text += error;
        text += '\n';
    }
    ip->MessageBox(ip->GetMAXHWnd(), text, "Export errors", host::MB_OK | host::MB_ICONERROR);
    return true;
}

void NQModelExporter::startViewer(const std::string& path) {
    const UserSettings& settings = userSettings();
    std::string arguments = nq::wideToUtf8(settings.viewerArgs());
    const std::size_t at = arguments.find("$FILE$");
    if (at != std::string::npos) {
        arguments.replace(at, 6, "\"" + path + "\"");
    }
    const int result = ip->ShellExecute(nullptr, nullptr, nq::wideToUtf8(settings.viewerPath()), arguments,
                                        nq::wideToUtf8(settings.viewerWorkDir()), 1);
    if (result < 32) {
        ip->MessageBox(ip->GetActiveWindow(), "Can't execute viewer.", "Error", host::MB_ICONERROR);
    }
}

void NQModelExporter::showStatistics() {
    if (!rootNode) {
        return;
    }
    std::string text;
    appendStatistics(text, model::utils::gatherStatistics(*rootNode), 0);
    ip->MessageBox(ip->GetMAXHWnd(), text, "Export statistics", host::MB_OK | host::MB_ICONINFORMATION);
}

void NQModelExporter::smoothNormals() {
    ip->ProgressStart("Smoothing normals...", false, progressCallback, nullptr);
    normalSmoother.gather();
    normalSmoother.apply();
    ip->ProgressEnd();
    for (const std::string& node : normalSmoother.zeroNormalNodes()) {
        reportError("Node %s has zero normals.", node.c_str());
    }
}

int NQModelExporter::DoExport(const char* name, host::ExpInterface*, host::Interface* host, bool,
                              std::uint32_t) {
    if (exportInProgress != 0) {
        return 0;
    }
    exportInProgress = 1;

    ip = host;
    reset();
    time = ip->GetTime();
    // The user-text parser finds aux_func.lua in the host's plug-in configuration directory.
    // The settings file and aux_func.lua are read from the host's plug-in configuration directory.
    const std::string configDir = ip->GetDir(host::APP_PLUGCFG_DIR);
    if (!configDir.empty()) {
        host::setPluginConfigDir(configDir);
        lu::setPluginConfigDir(configDir);
    }

    sceneDir.clear();
    sceneName.clear();
    host::BMMSplitFilename(ip->GetCurFilePath(), &sceneDir, &sceneName, nullptr);

    rootNode = model::createAs<model::RootNode>("model::RootNode");
    host::INode* sceneRoot = ip->GetRootNode();
    rootNode->name = sceneRoot->GetName();

    model::Ptr<model::TransformNode> conversion =
        model::createAs<model::TransformNode>("model::TransformNode");
    conversion->matrix = coordinateConversion();
    model::Ptr<model::Node> top = model::createAs<model::Node>("model::Node");
    top->append(conversion);
    rootNode->setRootNode(top);

    // The bones of the scene are collected here once bones and skins are exported.
    nodesTotal = 0;
    nodesDone = 0;
    nodesTotal = countNodes(sceneRoot);

    ip->ProgressStart("Exporting scene...", true, progressCallback, nullptr);
    const int children = sceneRoot->NumberOfChildren();
    for (int i = 0; i < children; ++i) {
        if (ip->GetCancel() || !exportNode(*this, conversion, sceneRoot->GetChildNode(i), emptyBox())) {
            ip->ProgressEnd();
            exportInProgress = 0;
            return 1;
        }
    }

    // The offset is taken off in scene units, before the axis change and the scale.
    conversion->matrix =
        nq::translateMatrix(nq::Vec3d{{-origin[0], -origin[1], -origin[2]}}) * conversion->matrix;

    ip->ProgressEnd();
    ip->ProgressStart("Some work...", true, progressCallback, nullptr);
    // Skins are linked to their bones here once bones and skins are exported; a failure shows
    // "Can't find some bones!" and ends the export.
    ip->ProgressEnd();

    std::string path = foldedPath(sceneDir + sceneName + ".nqf");
    if (name) {
        path = name;
    }

    // Material faults that would stop the passes or the writer are listed now, all of them and
    // with the node or material they concern. Each text is reported as it stands: a name with a
    // per cent sign is not a format.
    for (const std::string& fault : model::utils::checkMaterials(*rootNode)) {
        reportText(fault);
    }
    // The nodes left with zero normals are reported after the smoothing below, which is what
    // makes most of them.

    try {
        ip->ProgressStart("Optimizations...", false, progressCallback, nullptr);
        model::optimizeTransformations(rootNode.get());
        model::numberNodeConverter(rootNode.get());
        if (userSettings().smoothNormals() != 0) {
            smoothNormals();
        }
        model::utils::runRenderNodePasses(*rootNode);
        ip->ProgressEnd();

        model::RootNode& root = *rootNode;
        if (!root.boundingBox.isValid()) {
            if (root.hasBones()) {
                reportError("Model has bones so it must have manually set bounding box.");
            } else {
                root.boundingBox = model::utils::computeBoundingBox(root);
            }
        }
        if (userSettings().keysRescaleEnabled) {
            model::rescaleAnimationKeys(root.rootNode(), userSettings().keysRescaleFactor);
        }
        if (!root.userBox.isValid()) {
            root.userBox = root.boundingBox;
        }
        if (root.lightNodes().empty()) {
            root.lightBox = model::Box{};
        } else if (!root.lightBox.isValid()) {
            root.lightBox = model::utils::computeLightBox(root);
        }

        ip->ProgressStart("Writing file...", false, progressCallback, nullptr);
        ip->ProgressUpdate(1, true, nullptr);
        if (showErrorList()) {
            ip->ProgressEnd();
            reset();
            exportInProgress = 0;
            return 1;
        }
        root.save(path, userSettings().exportVersion());
    } catch (const nq::ExtException& e) {
        reportError("%s.\tFile: %s:%d.", e.message().c_str(), kSourcePath, __LINE__);
    }
    ip->ProgressEnd();

    if (!showErrorList() && userSettings().runViewerAfterExport()) {
        startViewer(path);
    }
    if (userSettings().showExportStat()) {
        showStatistics();
    }
    reset();
    exportInProgress = 0;
    return 1;
}

}  // namespace exporter
