#include "model/utils/WeldVertices.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

#include "model/utils/MeshChecks.h"

namespace model::utils {

namespace {

// The float of a vertex that carries the parent number and is compared by its bits.
constexpr std::size_t kTagPosition = 3;

// Meshes of at most this many vertices are welded by a sweep over their vertices sorted by the
// first float; larger ones search a k-d tree. Both find the same matches.
constexpr std::size_t kSweepLimit = 128;

// Moves the vertices that keep(v) holds for down within each attribute of some floats per
// vertex, in their order and with their values, and cuts each attribute behind them.
template <class Keep>
void keepVertices(Vertices& vertices, std::size_t count, Keep keep) {
    for (auto& [semantic, attr] : vertices.attributes) {
        if (attr.size <= 0) {
            continue;
        }
        const auto size = static_cast<std::size_t>(attr.size);
        float* base = attr.data.data();
        std::size_t write = 0;
        for (std::size_t v = 0; v < count; ++v) {
            if (keep(v)) {
                if (write != v) {
                    std::copy_n(base + v * size, size, base + write * size);
                }
                ++write;
            }
        }
        attr.data.resize(write * size);
    }
}

std::uint32_t dropUnused(Vertices& vertices, Indices& indices) {
    std::size_t count = vertices.vertexCount();
    std::vector<std::uint8_t> used(count, 0);
    std::size_t usedCount = 0;
    for (std::uint32_t index : indices.indices) {
        usedCount += used[index] ^ 1u;
        used[index] = 1;
    }
    if (usedCount == count) {
        return 0;
    }
    std::vector<std::uint32_t> newNumber(count);
    std::uint32_t kept = 0;
    for (std::size_t v = 0; v < count; ++v) {
        newNumber[v] = kept;
        kept += used[v];
    }
    auto dropped = static_cast<std::uint32_t>(count - kept);
    keepVertices(vertices, count, [&](std::size_t v) { return used[v] != 0; });
    for (std::uint32_t& index : indices.indices) {
        index = newNumber[index];
    }
    return dropped;
}

// A vertex with a float that is not finite, outside the tag position, matches nothing, not even
// itself: the difference of such floats is never within a tolerance.
bool isComparable(const float* v, std::size_t stride) {
    for (std::size_t k = 0; k < stride; ++k) {
        if (k != kTagPosition && !std::isfinite(v[k])) {
            return false;
        }
    }
    return true;
}

// A balanced k-d tree over vertices, stored implicitly: the median of a range is its middle
// element, the lower half lies before it and the upper half after it. At depth d the range is
// split on float d modulo 3 (fewer when the vertex has fewer floats). Each entry keeps its
// vertex's first three floats beside its number, so that a search reads the vertex data only for
// the entries that are within reach on those floats.
class KdTree {
public:
    KdTree(const float* data, std::size_t stride, const std::vector<std::uint32_t>& points)
        : data_(data), stride_(stride), dims_(std::min<std::size_t>(stride, 3)) {
        entries_.reserve(points.size());
        for (std::uint32_t v : points) {
            Entry e{{0, 0, 0}, v};
            std::copy_n(at(v), dims_, e.key);
            entries_.push_back(e);
        }
        build(0, entries_.size(), 0);
    }

    // Calls f with every vertex that matches the query.
    template <class F>
    void forEachMatch(const float* query, float tolerance, F&& f) {
        std::vector<Range>& stack = stack_;
        stack.assign(1, Range{0, entries_.size(), 0});
        while (!stack.empty()) {
            Range r = stack.back();
            stack.pop_back();
            if (r.lo >= r.hi) {
                continue;
            }
            std::size_t mid = r.lo + (r.hi - r.lo) / 2;
            const Entry& e = entries_[mid];
            bool near = true;
            for (std::size_t k = 0; k < dims_ && near; ++k) {
                near = std::fabs(e.key[k] - query[k]) <= tolerance;
            }
            if (near && weldMatch(query, at(e.vertex), stride_, tolerance)) {
                f(e.vertex);
            }
            std::size_t d = r.depth % dims_;
            if (std::fabs(e.key[d] - query[d]) <= tolerance) {
                stack.push_back({r.lo, mid, r.depth + 1});
                stack.push_back({mid + 1, r.hi, r.depth + 1});
            } else if (e.key[d] > query[d]) {
                stack.push_back({r.lo, mid, r.depth + 1});
            } else {
                stack.push_back({mid + 1, r.hi, r.depth + 1});
            }
        }
    }

private:
    struct Entry {
        float key[3];
        std::uint32_t vertex;
    };
    struct Range {
        std::size_t lo, hi, depth;
    };

    const float* at(std::uint32_t v) const { return data_ + static_cast<std::size_t>(v) * stride_; }

    void build(std::size_t lo, std::size_t hi, std::size_t depth) {
        if (hi - lo < 2) {
            return;
        }
        std::size_t mid = lo + (hi - lo) / 2;
        std::size_t d = depth % dims_;
        auto first = entries_.begin();
        std::nth_element(first + static_cast<std::ptrdiff_t>(lo), first + static_cast<std::ptrdiff_t>(mid),
                         first + static_cast<std::ptrdiff_t>(hi),
                         [d](const Entry& a, const Entry& b) { return a.key[d] < b.key[d]; });
        build(lo, mid, depth + 1);
        build(mid + 1, hi, depth + 1);
    }

    const float* data_;
    std::size_t stride_;
    std::size_t dims_;
    std::vector<Entry> entries_;
    // The ranges still to search, kept from one search to the next.
    std::vector<Range> stack_;
};

}  // namespace

std::uint32_t removeUnusedVertices(Vertices& vertices, Indices& indices, std::string_view nodeName) {
    checkMesh(vertices, indices, nodeName);
    return dropUnused(vertices, indices);
}

bool weldMatch(const float* a, const float* b, std::size_t stride, float tolerance) {
    for (std::size_t k = 0; k < stride; ++k) {
        if (k == kTagPosition) {
            if (std::bit_cast<std::uint32_t>(a[k]) != std::bit_cast<std::uint32_t>(b[k])) {
                return false;
            }
        } else if (!(std::fabs(a[k] - b[k]) <= tolerance)) {
            return false;
        }
    }
    return true;
}

std::uint32_t weldVertices(Vertices& vertices, Indices& indices, float tolerance, std::string_view nodeName) {
    checkMesh(vertices, indices, nodeName);
    std::uint32_t removed = dropUnused(vertices, indices);
    std::size_t count = vertices.vertexCount();
    std::size_t stride = vertices.stride();
    if (count < 2 || stride == 0) {
        return removed;
    }
    std::vector<float> data = vertices.interleaved();
    auto at = [&](std::size_t v) { return data.data() + v * stride; };

    std::vector<std::uint32_t> points;
    points.reserve(count);
    for (std::size_t v = 0; v < count; ++v) {
        if (isComparable(at(v), stride)) {
            points.push_back(static_cast<std::uint32_t>(v));
        }
    }
    std::vector<std::uint8_t> gone(count, 0);
    std::vector<std::uint32_t> target(count);
    std::uint32_t welded = 0;
    auto weldInto = [&](std::uint32_t v, std::uint32_t w) {
        if (w > v && !gone[w]) {
            gone[w] = 1;
            target[w] = v;
            ++welded;
        }
    };
    if (points.size() <= kSweepLimit) {
        // A small mesh sorts its vertices by their first float and compares each with those whose
        // first float lies within the tolerance of its own, walking out from its place in the
        // order: float differences grow monotonically away from it, so the walk stops at the
        // first one out of reach. No tree is built; grids and other meshes with many equal
        // coordinates would make a tree search both sides at most of its levels.
        // The order is that of the first float with the vertex number breaking ties: each key
        // holds the float's bits turned so that unsigned order is numeric order (-0 just below
        // +0, which the walk treats as equal anyway) above the vertex number, and the keys sort
        // as plain integers.
        std::vector<std::uint64_t> keys;
        keys.reserve(points.size());
        for (std::uint32_t v : points) {
            const auto bits = std::bit_cast<std::uint32_t>(at(v)[0]);
            const std::uint32_t ordered = (bits & 0x80000000u) != 0 ? ~bits : bits | 0x80000000u;
            keys.push_back(std::uint64_t{ordered} << 32 | v);
        }
        std::sort(keys.begin(), keys.end());
        std::vector<std::uint32_t> order(keys.size());
        std::vector<float> first(keys.size());
        std::vector<std::uint32_t> place(count);
        for (std::size_t k = 0; k < keys.size(); ++k) {
            order[k] = static_cast<std::uint32_t>(keys[k]);
            first[k] = at(order[k])[0];
            place[order[k]] = static_cast<std::uint32_t>(k);
        }
        for (std::uint32_t v : points) {
            if (gone[v]) {
                continue;
            }
            const float* query = at(v);
            auto visit = [&](std::size_t k) {
                if (!(std::fabs(first[k] - query[0]) <= tolerance)) {
                    return false;
                }
                const std::uint32_t w = order[k];
                if (w > v && !gone[w] && weldMatch(query, at(w), stride, tolerance)) {
                    weldInto(v, w);
                }
                return true;
            };
            for (std::size_t k = place[v] + 1; k < order.size() && visit(k); ++k) {
            }
            for (std::size_t k = place[v]; k > 0 && visit(k - 1); --k) {
            }
        }
    } else {
        KdTree tree(data.data(), stride, points);
        for (std::uint32_t v : points) {
            if (!gone[v]) {
                tree.forEachMatch(at(v), tolerance, [&](std::uint32_t w) { weldInto(v, w); });
            }
        }
    }
    if (welded == 0) {
        return removed;
    }

    // A welded vertex takes the final number of its survivor, which lies before it; a kept vertex
    // moves down by the number of welded vertices before it.
    std::vector<std::uint32_t> finalNumber(count);
    std::uint32_t running = 0;
    for (std::size_t v = 0; v < count; ++v) {
        if (gone[v]) {
            finalNumber[v] = finalNumber[target[v]];
            ++running;
        } else {
            finalNumber[v] = static_cast<std::uint32_t>(v) - running;
        }
    }
    for (std::uint32_t& index : indices.indices) {
        index = finalNumber[index];
    }
    // The kept vertices move down within each attribute with the values they have; an attribute
    // of no floats per vertex keeps no data.
    for (auto& [semantic, attr] : vertices.attributes) {
        if (attr.size <= 0) {
            attr.data.clear();
        }
    }
    keepVertices(vertices, count, [&](std::size_t v) { return !gone[v]; });
    return removed + welded;
}

}  // namespace model::utils
