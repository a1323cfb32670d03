#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <unordered_map>

#include "model/utils/NormalSmoother.h"

namespace model::utils {

namespace {

// Cells twice as wide as the tolerance: two vertices that meet lie in the same or in neighbouring
// cells on every axis, with room to spare for the rounding of the division.
constexpr double kCellSize = 2.0 * kSmoothTolerance;
// Cell numbers are clamped here; far-out vertices share the outermost cells, which only adds
// candidates, never loses one.
constexpr double kCellLimit = 1099511627776.0;  // 2^40

struct Cell {
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t z = 0;
    bool operator==(const Cell&) const = default;
    bool operator<(const Cell& o) const { return x != o.x ? x < o.x : y != o.y ? y < o.y : z < o.z; }
};

// The finaliser of splitmix64: every input bit reaches every output bit.
std::uint64_t mix(std::uint64_t h) {
    h = (h ^ (h >> 30)) * 0xBF58476D1CE4E5B9ull;
    h = (h ^ (h >> 27)) * 0x94D049BB133111EBull;
    return h ^ (h >> 31);
}

struct CellHash {
    std::size_t operator()(const Cell& c) const noexcept {
        std::uint64_t h = mix(static_cast<std::uint64_t>(c.x));
        h = mix(h ^ static_cast<std::uint64_t>(c.y));
        h = mix(h ^ static_cast<std::uint64_t>(c.z));
        return static_cast<std::size_t>(h);
    }
};

std::int64_t cellNumber(double coordinate) {
    return static_cast<std::int64_t>(std::clamp(std::floor(coordinate / kCellSize), -kCellLimit, kCellLimit));
}

Cell cellOf(const nq::Vec3d& p) {
    return {cellNumber(p[0]), cellNumber(p[1]), cellNumber(p[2])};
}

bool isFinite(const nq::Vec3d& p) {
    return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]);
}

// Calls f with each of the 27 cells around c.
template <class F>
void forNeighbours(const Cell& c, F&& f) {
    for (std::int64_t dx = -1; dx <= 1; ++dx) {
        for (std::int64_t dy = -1; dy <= 1; ++dy) {
            for (std::int64_t dz = -1; dz <= 1; ++dz) {
                f(Cell{c.x + dx, c.y + dy, c.z + dz});
            }
        }
    }
}

// A vertex that can meet others, filed under its cell.
struct GridEntry {
    Cell cell;
    std::uint32_t node = 0;
    std::uint32_t vertex = 0;
};

// A meeting pair in the order of the pair walk: node a, node b, then v's number in a, then w's in
// b.
struct Meeting {
    std::uint32_t a = 0;
    std::uint32_t b = 0;
    std::uint32_t v = 0;
    std::uint32_t w = 0;
    bool operator<(const Meeting& o) const {
        return a != o.a ? a < o.a : b != o.b ? b < o.b : v != o.v ? v < o.v : w < o.w;
    }
};

// Every pair of vertices of different nodes that meet, with boxes of their nodes that meet, in the
// order of the pair walk. Two vertices that meet lie in the same or in neighbouring cells. The
// vertices are sorted by cell, and each cell is paired with itself and with the 13 neighbours that
// come after it in that order: a translation keeps the order of the cells, so each neighbour is
// found by a second cursor moving forward through the same sorted list. Every pair of cells is
// visited once and the whole search reads memory in order, with no lookups at random places.
std::vector<Meeting> meetingPairs(std::span<const SmoothNode> nodes) {
    std::vector<GridEntry> entries;
    for (std::uint32_t a = 0; a < nodes.size(); ++a) {
        for (std::uint32_t i = 0; i < nodes[a].vertices.size(); ++i) {
            const SmoothVertex& v = nodes[a].vertices[i];
            // A vertex without groups or with a coordinate that is not finite meets nothing.
            if (v.groups != 0 && isFinite(v.position)) {
                entries.push_back({cellOf(v.position), a, i});
            }
        }
    }
    std::sort(entries.begin(), entries.end(),
              [](const GridEntry& l, const GridEntry& r) { return l.cell < r.cell; });
    // The start of each cell's run in entries, and one past the last run.
    std::vector<std::uint32_t> runs;
    for (std::uint32_t i = 0; i < entries.size(); ++i) {
        if (i == 0 || !(entries[i].cell == entries[i - 1].cell)) {
            runs.push_back(i);
        }
    }
    const auto runCount = static_cast<std::uint32_t>(runs.size());
    runs.push_back(static_cast<std::uint32_t>(entries.size()));

    std::vector<Meeting> meetings;
    auto consider = [&](const GridEntry& p, const GridEntry& q) {
        if (p.node == q.node) {
            return;
        }
        const GridEntry& first = p.node < q.node ? p : q;
        const GridEntry& second = p.node < q.node ? q : p;
        const SmoothNode& na = nodes[first.node];
        const SmoothNode& nb = nodes[second.node];
        const SmoothVertex& v = na.vertices[first.vertex];
        if ((v.groups & nb.groupMask) != 0 && verticesMeet(na, v, nb, nb.vertices[second.vertex]) &&
            boxesMeet(na, nb)) {
            meetings.push_back({first.node, second.node, first.vertex, second.vertex});
        }
    };
    // Pairs within one cell.
    for (std::uint32_t r = 0; r < runCount; ++r) {
        for (std::uint32_t i = runs[r]; i < runs[r + 1]; ++i) {
            for (std::uint32_t j = i + 1; j < runs[r + 1]; ++j) {
                consider(entries[i], entries[j]);
            }
        }
    }
    // Pairs with each later neighbour.
    for (std::int64_t dx = 0; dx <= 1; ++dx) {
        for (std::int64_t dy = -1; dy <= 1; ++dy) {
            for (std::int64_t dz = -1; dz <= 1; ++dz) {
                const Cell offset{dx, dy, dz};
                if (!(Cell{} < offset)) {
                    continue;
                }
                std::uint32_t other = 0;
                for (std::uint32_t r = 0; r < runCount; ++r) {
                    const Cell& here = entries[runs[r]].cell;
                    const Cell target{here.x + dx, here.y + dy, here.z + dz};
                    while (other < runCount && entries[runs[other]].cell < target) {
                        ++other;
                    }
                    if (other == runCount) {
                        break;
                    }
                    if (!(entries[runs[other]].cell == target)) {
                        continue;
                    }
                    for (std::uint32_t i = runs[r]; i < runs[r + 1]; ++i) {
                        for (std::uint32_t j = runs[other]; j < runs[other + 1]; ++j) {
                            consider(entries[i], entries[j]);
                        }
                    }
                }
            }
        }
    }
    std::sort(meetings.begin(), meetings.end());
    return meetings;
}

// The heads of the clusters made so far, by cell; each cell's list ascends by cluster number.
class HeadIndex {
public:
    HeadIndex(std::span<const SmoothNode> nodes, const std::vector<SmoothCluster>& clusters)
        : nodes_(nodes), clusters_(clusters) {}

    void add(const SmoothVertex& head, std::uint32_t cluster) {
        cells_[cellOf(head.position)].push_back(cluster);
    }

    // The first cluster whose head meets v, or none.
    std::uint32_t firstMeeting(const SmoothNode& node, const SmoothVertex& v) const {
        std::uint32_t best = kNone;
        forNeighbours(cellOf(v.position), [&](const Cell& c) {
            auto it = cells_.find(c);
            if (it == cells_.end()) {
                return;
            }
            for (std::uint32_t cluster : it->second) {
                if (cluster >= best) {
                    break;
                }
                SmoothVertexRef h = clusters_[cluster].head;
                if (verticesMeet(nodes_[h.node], nodes_[h.node].vertices[h.vertex], node, v)) {
                    best = cluster;
                    break;
                }
            }
        });
        return best;
    }

    static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

private:
    std::span<const SmoothNode> nodes_;
    const std::vector<SmoothCluster>& clusters_;
    std::unordered_map<Cell, std::vector<std::uint32_t>, CellHash> cells_;
};

}  // namespace

std::vector<SmoothCluster> gatherSmoothClusters(std::span<const SmoothNode> nodes) {
    std::vector<SmoothCluster> clusters;
    if (nodes.size() < 2) {
        return clusters;
    }
    HeadIndex heads(nodes, clusters);
    for (const Meeting& m : meetingPairs(nodes)) {
        const SmoothNode& na = nodes[m.a];
        const SmoothVertex& v = na.vertices[m.v];
        std::uint32_t found = heads.firstMeeting(na, v);
        if (found != HeadIndex::kNone) {
            clusters[found].members.push_back({m.b, m.w});
        } else {
            heads.add(v, static_cast<std::uint32_t>(clusters.size()));
            clusters.push_back({{m.a, m.v}, {{m.b, m.w}}});
        }
    }
    return clusters;
}

}  // namespace model::utils
