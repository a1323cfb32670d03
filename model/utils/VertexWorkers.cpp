#include "model/utils/VertexWorkers.h"

#include "model/BaseMeshRenderNode.h"
#include "model/ShellNode.h"
#include "model/utils/RemapDuplicates.h"
#include "model/utils/RemoveEmptyNodes.h"
#include "model/utils/WeldVertices.h"

namespace model::utils {

namespace {

struct MeshRef {
    Vertices* vertices = nullptr;
    Indices* indices = nullptr;
};

// The mesh of a node that holds one.
MeshRef meshOf(BaseNode& node) {
    if (auto* render = dynamic_cast<BaseMeshRenderNode*>(&node)) {
        return {&render->vertices, &render->indices};
    }
    if (auto* shell = dynamic_cast<ShellNode*>(&node)) {
        return {&shell->vertices, &shell->indices};
    }
    return {};
}

}  // namespace

void WorkerRenderNode::processNode(std::size_t index) {
    BaseRenderNode* node = root->renderNodes().at(index).get();
    if (dynamic_cast<BaseMeshRenderNode*>(node)) {
        process(*node);
    }
}

std::size_t WorkerRenderNode::nodeCount() const {
    return root->renderNodes().size();
}

void WorkerShellNode::processNode(std::size_t index) {
    BaseShellNode* node = root->shellNodes().at(index).get();
    if (node && node->nodeType() == NodeType::ShellNode) {
        process(*node);
    }
}

std::size_t WorkerShellNode::nodeCount() const {
    return root->shellNodes().size();
}

template <class List>
void ExtremeWorker<List>::process(BaseNode& node) {
    MeshRef mesh = meshOf(node);
    if (mesh.vertices) {
        this->removedVertices += weldVertices(*mesh.vertices, *mesh.indices, tolerance, node.name);
    }
}

template <class List>
void RemapWorker<List>::process(BaseNode& node) {
    MeshRef mesh = meshOf(node);
    if (mesh.vertices) {
        std::size_t indexCount = mesh.indices->indices.size();
        this->removedVertices += remapDuplicateVertices(*mesh.vertices, *mesh.indices, node.name);
        this->removedIndices += static_cast<std::uint32_t>(indexCount - mesh.indices->indices.size());
    }
}

template class ExtremeWorker<WorkerRenderNode>;
template class ExtremeWorker<WorkerShellNode>;
template class RemapWorker<WorkerRenderNode>;
template class RemapWorker<WorkerShellNode>;

void runWorker(WorkerNode& worker) {
    std::size_t count = worker.nodeCount();
    for (std::size_t i = 0; i < count; ++i) {
        worker.processNode(i);
    }
}

RemovedCounts extremeOptimize(RootNode& root, float tolerance, RenderMeshes meshes) {
    ExtremeWorkerRenderNode render(root, tolerance);
    if (meshes == RenderMeshes::Unwelded) {
        runWorker(render);
    }
    removeEmptyRenderNodes(root);
    ExtremeWorkerShellNode shell(root, tolerance);
    runWorker(shell);
    removeEmptyShellNodes(root);
    return {render.removedVertices + shell.removedVertices, render.removedIndices + shell.removedIndices};
}

RemovedCounts remapOptimize(RootNode& root) {
    RemapWorkerRenderNode render(root);
    runWorker(render);
    RemapWorkerShellNode shell(root);
    runWorker(shell);
    return {render.removedVertices + shell.removedVertices, render.removedIndices + shell.removedIndices};
}

std::uint32_t weldRenderNodes(RootNode& root, float tolerance) {
    ExtremeWorkerRenderNode render(root, tolerance);
    runWorker(render);
    return render.removedVertices;
}

}  // namespace model::utils
