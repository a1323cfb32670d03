#pragma once
// The exporter the host drives: one instance per export. DoExport takes the host's scene to a
// written .nqf file; the walk of the scene (exportNode) fills the tree that it holds meanwhile.

#include <cstdint>
#include <set>
#include <string>

#include "core/Math.h"
#include "exporter/MeshExport.h"
#include "exporter/MtlKeeper.h"
#include "host/INode.h"
#include "host/Interface.h"
#include "host/SceneExport.h"
#include "model/RootNode.h"
#include "model/TransformNode.h"
#include "model/utils/NormalSmoother.h"

namespace exporter {

// Non-zero while an export runs. The progress display and the modal windows let the host call
// back in on the same thread; a second export started that way is refused.
extern int exportInProgress;

// The axis change and scale from scene space to model space, by the setting modelScale.
nq::Matrixd coordinateConversion();

class NQModelExporter : public host::SceneExport {
public:
    NQModelExporter() = default;
    ~NQModelExporter() override;

    int ExtCount() override { return 1; }
    std::string Ext(int) override { return "nqf"; }
    std::string LongDesc() override { return "Norquill Model Exporter"; }
    std::string ShortDesc() override { return "nq::Model Exporter"; }
    std::string AuthorName() override { return "The nqf exporter team"; }
    std::string CopyrightMessage() override { return "Copyright (c) the nqf exporter team"; }
    std::string OtherMessage1() override { return {}; }
    std::string OtherMessage2() override { return {}; }
    unsigned int Version() override;
    void ShowAbout(host::HWND parent) override;
    int DoExport(const char* name, host::ExpInterface* ei, host::Interface* ip, bool suppressPrompts = false,
                 std::uint32_t options = 0) override;
    bool SupportsOptions(int, std::uint32_t) override { return true; }

    // The common clean-up: forgets what the last export gathered and releases the tree.
    void reset();

    // What the walk works with.
    model::Ptr<model::RootNode> rootNode;
    // Nodes a lod root or number root has exported already.
    std::set<host::INode*> consumedNodes;
    // The model materials of this export, shared among the nodes that use like materials.
    MtlKeeper mtlKeeper;
    // The render nodes whose normals are smoothed across nodes, collected by the walk.
    model::utils::NormalSmoother normalSmoother;
    // World position of the helper named "ORIGIN", scene units.
    nq::Vec3d origin{};
    host::TimeValue time = 0;
    host::Interface* ip = nullptr;
    std::int32_t nodesTotal = 0;
    std::int32_t nodesDone = 0;
    // The scene file's directory (with its separator) and name without extension.
    std::string sceneDir;
    std::string sceneName;

private:
    // Shows the collected messages and empties the list; true when there were any.
    bool showErrorList();
    void startViewer(const std::string& path);
    void showStatistics();
    // Closes the shading seams between the collected render nodes, then reports each node left
    // with a normal of zero length.
    void smoothNormals();
};

}  // namespace exporter
