#pragma once
// The plain pair walk over the collected nodes, without any index: every pair of nodes, every
// vertex pair of two nodes whose boxes meet, and a search of the cluster list from its start.
// The product's indexed search must give exactly these clusters.

#include <span>
#include <vector>

#include "model/utils/NormalSmoother.h"

namespace smoothtest {

using namespace model::utils;

inline std::vector<SmoothCluster> referenceClusters(std::span<const SmoothNode> nodes) {
    std::vector<SmoothCluster> clusters;
    for (std::uint32_t a = 0; a < nodes.size(); ++a) {
        for (std::uint32_t b = a + 1; b < nodes.size(); ++b) {
            if (!boxesMeet(nodes[a], nodes[b])) {
                continue;
            }
            for (std::uint32_t vi = 0; vi < nodes[a].vertices.size(); ++vi) {
                const SmoothVertex& v = nodes[a].vertices[vi];
                if ((v.groups & nodes[b].groupMask) == 0) {
                    continue;
                }
                for (std::uint32_t wi = 0; wi < nodes[b].vertices.size(); ++wi) {
                    if (!verticesMeet(nodes[a], v, nodes[b], nodes[b].vertices[wi])) {
                        continue;
                    }
                    SmoothCluster* found = nullptr;
                    for (SmoothCluster& c : clusters) {
                        const SmoothNode& hn = nodes[c.head.node];
                        if (verticesMeet(hn, hn.vertices[c.head.vertex], nodes[a], v)) {
                            found = &c;
                            break;
                        }
                    }
                    if (found) {
                        found->members.push_back({b, wi});
                    } else {
                        clusters.push_back({{a, vi}, {{b, wi}}});
                    }
                }
            }
        }
    }
    return clusters;
}

}  // namespace smoothtest
