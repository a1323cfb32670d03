#include "model/utils/RemoveEmptyNodes.h"

#include <optional>
#include <vector>

#include "model/BaseMeshRenderNode.h"
#include "model/FakeOmniLightsNode.h"
#include "model/FakeSpotLights3Node.h"
#include "model/FakeSpotLightsNode.h"

namespace model::utils {

std::size_t renderPrimitiveCount(const BaseRenderNode& node) {
    if (const auto* mesh = dynamic_cast<const BaseMeshRenderNode*>(&node)) {
        return mesh->indices.primitiveCount();
    }
    if (const auto* omni = dynamic_cast<const FakeOmniLightsNode*>(&node)) {
        return omni->lights.size();
    }
    if (const auto* spot = dynamic_cast<const FakeSpotLightsNode*>(&node)) {
        return spot->lights.size();
    }
    if (const auto* spot3 = dynamic_cast<const FakeSpotLights3Node*>(&node)) {
        return spot3->lightData.vertexCount();
    }
    return 1;
}

namespace {

// The nodes of a list for which keep is true, in order; the others lose their root. Null when none
// was dropped.
template <class T, class Keep>
std::optional<std::vector<Ptr<T>>> filtered(const std::vector<Ptr<T>>& list, Keep keep) {
    std::vector<Ptr<T>> kept;
    kept.reserve(list.size());
    bool dropped = false;
    for (const Ptr<T>& node : list) {
        if (node && keep(*node)) {
            kept.push_back(node);
        } else {
            if (node) {
                node->root = nullptr;
            }
            dropped = true;
        }
    }
    if (!dropped) {
        return std::nullopt;
    }
    return kept;
}

}  // namespace

void removeEmptyRenderNodes(RootNode& root) {
    auto kept =
        filtered(root.renderNodes(), [](const BaseRenderNode& n) { return renderPrimitiveCount(n) != 0; });
    if (kept) {
        root.setRenderNodes(std::move(*kept));
    }
}

void removeEmptyShellNodes(RootNode& root) {
    auto kept = filtered(root.shellNodes(), [](const BaseShellNode& n) { return !n.isEmpty(); });
    if (kept) {
        root.setShellNodes(std::move(*kept));
    }
}

}  // namespace model::utils
