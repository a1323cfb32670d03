#include <algorithm>
#include <cmath>
#include <limits>
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

// Every vertex of every node by global number (nodes in order, then vertices in order), sorted by
// cell and, within a cell, by number.
class VertexGrid {
public:
    explicit VertexGrid(std::span<const SmoothNode> nodes) {
        std::uint32_t total = 0;
        for (const SmoothNode& n : nodes) {
            starts_.push_back(total);
            total += static_cast<std::uint32_t>(n.vertices.size());
        }
        starts_.push_back(total);
        std::vector<std::pair<Cell, std::uint32_t>> entries;
        entries.reserve(total);
        for (std::uint32_t a = 0; a < nodes.size(); ++a) {
            for (std::uint32_t i = 0; i < nodes[a].vertices.size(); ++i) {
                const SmoothVertex& v = nodes[a].vertices[i];
                // A vertex without groups or with a coordinate that is not finite meets nothing.
                if (v.groups != 0 && isFinite(v.position)) {
                    entries.emplace_back(cellOf(v.position), starts_[a] + i);
                }
            }
        }
        std::sort(entries.begin(), entries.end(), [](const auto& l, const auto& r) {
            return l.first < r.first || (l.first == r.first && l.second < r.second);
        });
        numbers_.reserve(entries.size());
        ranges_.reserve(entries.size());
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (i == 0 || !(entries[i].first == entries[i - 1].first)) {
                ranges_.emplace(entries[i].first,
                                Range{static_cast<std::uint32_t>(i), static_cast<std::uint32_t>(i)});
            }
            ranges_[entries[i].first].end = static_cast<std::uint32_t>(i + 1);
            numbers_.push_back(entries[i].second);
        }
    }

    // The numbers in cell c that are at least from, ascending.
    std::span<const std::uint32_t> from(const Cell& c, std::uint32_t from) const {
        auto it = ranges_.find(c);
        if (it == ranges_.end()) {
            return {};
        }
        auto begin = numbers_.begin() + it->second.begin;
        auto end = numbers_.begin() + it->second.end;
        begin = std::lower_bound(begin, end, from);
        return {begin, end};
    }

    std::uint32_t start(std::uint32_t node) const { return starts_[node]; }
    // The node of a global number.
    std::uint32_t nodeOf(std::uint32_t number) const {
        return static_cast<std::uint32_t>(std::upper_bound(starts_.begin(), starts_.end(), number) -
                                          starts_.begin() - 1);
    }

private:
    struct Range {
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
    };
    std::vector<std::uint32_t> starts_;
    std::vector<std::uint32_t> numbers_;
    std::unordered_map<Cell, Range, CellHash> ranges_;
};

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

// A meeting pair in the order of the pair walk: node b, then v's number in a, then w's in b.
struct Meeting {
    std::uint32_t b = 0;
    std::uint32_t v = 0;
    std::uint32_t w = 0;
    bool operator<(const Meeting& o) const { return b != o.b ? b < o.b : v != o.v ? v < o.v : w < o.w; }
};

}  // namespace

std::vector<SmoothCluster> gatherSmoothClusters(std::span<const SmoothNode> nodes) {
    std::vector<SmoothCluster> clusters;
    if (nodes.size() < 2) {
        return clusters;
    }
    const VertexGrid grid(nodes);
    HeadIndex heads(nodes, clusters);
    std::vector<Meeting> meetings;
    // Whether the boxes of a and b meet: -1 while not yet known. Only the entries asked for are
    // reset, so that many small nodes do not cost the square of their number.
    std::vector<signed char> meets(nodes.size(), -1);
    std::vector<std::uint32_t> asked;
    for (std::uint32_t a = 0; a + 1 < nodes.size(); ++a) {
        const SmoothNode& na = nodes[a];
        for (std::uint32_t b : asked) {
            meets[b] = -1;
        }
        asked.clear();
        meetings.clear();
        const std::uint32_t later = grid.start(a + 1);
        for (std::uint32_t vi = 0; vi < na.vertices.size(); ++vi) {
            const SmoothVertex& v = na.vertices[vi];
            if (v.groups == 0 || !isFinite(v.position)) {
                continue;
            }
            forNeighbours(cellOf(v.position), [&](const Cell& c) {
                for (std::uint32_t number : grid.from(c, later)) {
                    std::uint32_t b = grid.nodeOf(number);
                    const SmoothNode& nb = nodes[b];
                    if (meets[b] < 0) {
                        meets[b] = boxesMeet(na, nb) ? 1 : 0;
                        asked.push_back(b);
                    }
                    std::uint32_t wi = number - grid.start(b);
                    if (meets[b] && (v.groups & nb.groupMask) != 0 &&
                        verticesMeet(na, v, nb, nb.vertices[wi])) {
                        meetings.push_back({b, vi, wi});
                    }
                }
            });
        }
        std::sort(meetings.begin(), meetings.end());
        for (const Meeting& m : meetings) {
            const SmoothVertex& v = na.vertices[m.v];
            std::uint32_t found = heads.firstMeeting(na, v);
            if (found != HeadIndex::kNone) {
                clusters[found].members.push_back({m.b, m.w});
            } else {
                heads.add(v, static_cast<std::uint32_t>(clusters.size()));
                clusters.push_back({{a, m.v}, {{m.b, m.w}}});
            }
        }
    }
    return clusters;
}

}  // namespace model::utils
