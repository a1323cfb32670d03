#pragma once
// Workers that run one mesh operation on every node of one of the root's lists, and the passes
// built from them.

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "model/BaseNode.h"
#include "model/Indices.h"
#include "model/RootNode.h"
#include "model/Vertices.h"

namespace model::utils {

// What a pass removed: vertices and indices.
struct RemovedCounts {
    std::uint32_t vertices = 0;
    std::uint32_t indices = 0;
    bool operator==(const RemovedCounts&) const = default;
};

class WorkerNode {
public:
    explicit WorkerNode(RootNode& owner) : root(&owner) {}
    virtual ~WorkerNode() = default;
    WorkerNode(const WorkerNode&) = delete;
    WorkerNode& operator=(const WorkerNode&) = delete;

    // Looks up the index-th node of this worker's list and processes it if it is of the right kind.
    virtual void processNode(std::size_t index) = 0;
    // The size of this worker's list.
    virtual std::size_t nodeCount() const = 0;
    virtual void process(BaseNode& node) = 0;

    RootNode* root;
    // Added to atomically, so that the nodes, which are independent, could be processed in parallel.
    std::atomic<std::uint32_t> removedVertices{0};
    std::atomic<std::uint32_t> removedIndices{0};
};

// Over the render list: the nodes that have a mesh of their own (BaseMeshRenderNode).
class WorkerRenderNode : public WorkerNode {
public:
    using WorkerNode::WorkerNode;
    void processNode(std::size_t index) override;
    std::size_t nodeCount() const override;
};

// Over the shell list: the nodes of exact class ShellNode.
class WorkerShellNode : public WorkerNode {
public:
    using WorkerNode::WorkerNode;
    void processNode(std::size_t index) override;
    std::size_t nodeCount() const override;
};

// Welds nearly equal vertices of each mesh (weldVertices).
template <class List>
class ExtremeWorker : public List {
public:
    ExtremeWorker(RootNode& owner, float weldTolerance) : List(owner), tolerance(weldTolerance) {}
    void process(BaseNode& node) override;
    float tolerance;
};

// Drops the vertices of each mesh that equal an earlier one byte for byte (remapDuplicateVertices).
template <class List>
class RemapWorker : public List {
public:
    using List::List;
    void process(BaseNode& node) override;
};

using ExtremeWorkerRenderNode = ExtremeWorker<WorkerRenderNode>;
using ExtremeWorkerShellNode = ExtremeWorker<WorkerShellNode>;
using RemapWorkerRenderNode = RemapWorker<WorkerRenderNode>;
using RemapWorkerShellNode = RemapWorker<WorkerShellNode>;

// processNode(i) for every i below nodeCount(), in order.
void runWorker(WorkerNode& worker);

// Whether the meshes of the render nodes have just been welded with the same tolerance.
enum class RenderMeshes { Unwelded, Welded };

// ExtremeWorkerRenderNode, removeEmptyRenderNodes, ExtremeWorkerShellNode, removeEmptyShellNodes;
// the counts of both workers summed. With RenderMeshes::Welded the render worker is left out: a
// welded mesh uses every vertex and no two of its vertices match (each survivor took every later
// vertex that matched it), so a second weld would remove nothing and change nothing.
RemovedCounts extremeOptimize(RootNode& root, float tolerance, RenderMeshes render = RenderMeshes::Unwelded);
// RemapWorkerRenderNode, then RemapWorkerShellNode; the counts of both summed.
RemovedCounts remapOptimize(RootNode& root);
// The welding of the render nodes alone; returns the number of vertices it removed.
std::uint32_t weldRenderNodes(RootNode& root, float tolerance);

}  // namespace model::utils
