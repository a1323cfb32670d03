#pragma once
// The straightforward forms of the welding and merging passes, as the description of the passes
// words them: every vertex against every vertex, every node against every group, every material
// pair, a search for each removal. The product code indexes instead; the differential tests
// compare both on random input, and the benchmark shows what the indexes save.

#include <algorithm>
#include <cstdint>
#include <unordered_set>
#include <vector>

#include "core/ExtException.h"
#include "model/RootNode.h"
#include "model/utils/MergeGrouping.h"
#include "model/utils/MergeGroups.h"
#include "model/utils/MergeRenderNodes.h"
#include "model/utils/RemoveEmptyNodes.h"
#include "model/utils/UnifyEqualProperties.h"
#include "model/utils/WeldVertices.h"

namespace reference {

using namespace model;
using namespace model::utils;

// Welding with a search over all vertices for each one.
inline std::uint32_t weldVertices(Vertices& vertices, Indices& indices, float tolerance) {
    std::uint32_t removed = removeUnusedVertices(vertices, indices);
    std::size_t count = vertices.vertexCount();
    std::size_t stride = vertices.stride();
    if (count < 2 || stride == 0) {
        return removed;
    }
    std::vector<float> data = vertices.interleaved();
    std::vector<bool> gone(count, false);
    std::vector<std::uint32_t> finalNumber(count);
    std::vector<std::uint32_t> target(count);
    std::uint32_t welded = 0;
    for (std::size_t v = 0; v < count; ++v) {
        if (gone[v]) {
            continue;
        }
        std::vector<std::size_t> matches;
        for (std::size_t w = 0; w < count; ++w) {
            if (weldMatch(&data[v * stride], &data[w * stride], stride, tolerance)) {
                matches.push_back(w);
            }
        }
        if (matches.size() > 1) {
            for (std::size_t w : matches) {
                if (w > v && !gone[w]) {
                    gone[w] = true;
                    target[w] = static_cast<std::uint32_t>(v);
                    ++welded;
                }
            }
        }
    }
    if (welded == 0) {
        return removed;
    }
    std::uint32_t running = 0;
    std::vector<float> kept;
    for (std::size_t v = 0; v < count; ++v) {
        if (gone[v]) {
            finalNumber[v] = finalNumber[target[v]];
            ++running;
        } else {
            finalNumber[v] = static_cast<std::uint32_t>(v) - running;
            kept.insert(kept.end(), data.begin() + static_cast<std::ptrdiff_t>(v * stride),
                        data.begin() + static_cast<std::ptrdiff_t>((v + 1) * stride));
        }
    }
    for (std::uint32_t& index : indices.indices) {
        index = finalNumber[index];
    }
    vertices.assignInterleaved(kept, count - welded);
    return removed + welded;
}

// Materials are compared against the whole seen list, duplicates replaced node by node, and every
// pair of nodes checked.
inline bool unifyEqualProperties(RootNode& root) {
    auto distinct = [&] {
        std::unordered_set<const BaseMaterial*> set;
        for (const auto& node : root.renderNodes()) {
            set.insert(node->material.get());
        }
        return set.size();
    };
    std::size_t before = distinct();
    std::vector<MaterialPtr> seen;
    const auto& list = root.renderNodes();
    for (std::size_t i = 0; i < list.size(); ++i) {
        MaterialPtr m = list[i]->material;
        bool known = false;
        for (const MaterialPtr& s : seen) {
            if (s.get() == m.get()) {
                known = true;
                break;
            }
            if (areEqualMaterials(m.get(), s.get())) {
                for (const auto& node : list) {
                    if (node->material.get() == m.get()) {
                        node->material = s;
                    }
                }
                known = true;
                break;
            }
        }
        if (!known) {
            seen.push_back(m);
        }
    }
    for (std::size_t i = 0; i < list.size(); ++i) {
        for (std::size_t j = i + 1; j < list.size(); ++j) {
            const BaseMaterial* a = list[i]->material.get();
            const BaseMaterial* b = list[j]->material.get();
            if (a != b && areEqualMaterials(a, b)) {
                throw nq::ExtException("There is still equal properties sets.");
            }
        }
    }
    return distinct() != before;
}

// Each node against the key of every group, in the order the groups were opened.
inline std::vector<MergeGroup> groupForMerge(MergeKind kind, const std::vector<Ptr<BaseRenderNode>>& nodes,
                                             MergeCounters& counters) {
    std::vector<MergeGroup> groups;
    for (const Ptr<BaseRenderNode>& node : nodes) {
        bool placed = false;
        for (MergeGroup& group : groups) {
            if (canMergeAs(kind, *group.front(), *node, counters)) {
                group.push_back(node);
                placed = true;
                break;
            }
        }
        if (!placed) {
            groups.push_back({node});
        }
    }
    return groups;
}

// Each removal searches the list.
inline void applyMergeLists(RootNode& root, const std::vector<Ptr<BaseRenderNode>>& removeList,
                            const std::vector<Ptr<BaseRenderNode>>& addList) {
    std::vector<Ptr<BaseRenderNode>> list = root.renderNodes();
    for (const Ptr<BaseRenderNode>& node : removeList) {
        auto it = std::find(list.begin(), list.end(), node);
        if (it == list.end()) {
            continue;
        }
        if (it != list.end() - 1) {
            *it = std::move(list.back());
        }
        list.pop_back();
        node->root = nullptr;
    }
    list.insert(list.end(), addList.begin(), addList.end());
    root.setRenderNodes(std::move(list));
}

inline MergeCounters mergeRenderNodes(RootNode& root) {
    removeEmptyRenderNodes(root);
    reference::unifyEqualProperties(root);
    MergeCounters counters;
    std::vector<Ptr<BaseRenderNode>> removeList;
    std::vector<Ptr<BaseRenderNode>> addList;
    for (MergeKind kind : kMergeKinds) {
        for (const MergeGroup& group : reference::groupForMerge(kind, nodesOfKind(root, kind), counters)) {
            removeList.insert(removeList.end(), group.begin(), group.end());
            addList.push_back(mergeMembers(kind, group));
        }
    }
    reference::applyMergeLists(root, removeList, addList);
    removeEmptyRenderNodes(root);
    removeEmptyShellNodes(root);
    return counters;
}

}  // namespace reference
