#include "model/utils/MergeGrouping.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

#include "core/ExtException.h"
#include "model/utils/CanMerge.h"
#include "model/utils/MergeContext.h"
#include "model/utils/PropertySignature.h"

namespace model::utils {

namespace {

// Group numbers, ascending: the order in which the groups were opened.
using GroupList = std::vector<std::uint32_t>;

std::size_t countBelow(const GroupList& list, std::uint32_t bound) {
    if (list.empty() || list.back() < bound) {
        return list.size();
    }
    return static_cast<std::size_t>(std::lower_bound(list.begin(), list.end(), bound) - list.begin());
}

// Open groups of one property class and one primitive.
struct Cell {
    GroupList all;
    // Keys under a billboard, and the rest by their nearest visibility node.
    GroupList billboard;
    GroupList open;
    std::unordered_map<const Node*, GroupList> byVisibility;
};

// Open groups whose keys hold byte-equal property lists.
struct PropertyClass {
    const PropertyList* properties;
    GroupList all;
    std::unordered_map<std::uint32_t, Cell> byPrimitive;
};

// Open groups of one material.
struct MaterialBucket {
    GroupList all;
    // Keys with one link; for the kinds that test links first, all keys here have one.
    GroupList linked;
    std::vector<PropertyClass> classes;
    std::unordered_map<std::string, std::uint32_t> classByBytes;
    std::unordered_map<std::string, std::vector<std::uint32_t>> classesByLookup;
    std::vector<std::uint32_t> repeatedNameClasses;
};

// What the tests of a node look at.
struct Facts {
    Ptr<BaseRenderNode> node;
    bool oneLink = false;
    const BaseMaterial* material = nullptr;
    std::uint32_t primitive = 0;
    const MergeContext* context = nullptr;
};

// Adds or subtracts the groups of a list that lie below the accepting group.
struct Term {
    const GroupList* list;
    MergeCounters::Reason reason;
    bool subtract;
};

class Grouper {
public:
    Grouper(MergeKind kind, MergeCounters& counters) : kind_(kind), counters_(counters) {}

    void place(const Ptr<BaseRenderNode>& node) {
        Facts f = factsOf(node);
        PropertySignature signature = makePropertySignature(node->properties);
        const bool linksFirst = kind_ == MergeKind::RenderNode || kind_ == MergeKind::Number;
        if (linksFirst && !f.oneLink) {
            open(f, signature, false);
            return;
        }
        terms_.clear();
        lodRejected_.clear();
        spotRejected_.clear();
        bound_ = static_cast<std::uint32_t>(groups_.size());
        auto found = buckets_.find(f.material);
        MaterialBucket* bucket = found == buckets_.end() ? nullptr : &found->second;
        terms_.push_back({&global_, MergeCounters::kMaterial, false});
        if (bucket) {
            terms_.push_back({&bucket->all, MergeCounters::kMaterial, true});
            if (f.oneLink) {
                searchBucket(*bucket, f, signature);
            }
        }
        settle();
        if (bound_ == groups_.size()) {
            open(f, signature, true);
        } else {
            groups_[bound_].push_back(node);
        }
    }

    std::vector<MergeGroup> take() { return std::move(groups_); }

private:
    Facts factsOf(const Ptr<BaseRenderNode>& node) {
        Facts f;
        f.node = node;
        f.oneLink = node->linkCount() == 1;
        f.material = node->material.get();
        if (kind_ == MergeKind::RenderNode) {
            f.primitive = static_cast<const RenderNode&>(*node).indices.primitive;
        }
        f.context = &contexts_.of(f.oneLink ? node->link(0).get() : nullptr);
        return f;
    }

    void searchBucket(MaterialBucket& bucket, const Facts& f, const PropertySignature& signature) {
        if (kind_ == MergeKind::RenderNode) {
            if (!f.material && !bucket.linked.empty()) {
                throw nq::ExtException("Material of render node isn't set.");
            }
            if (blendingOf(f.material) == kUnmergedBlending) {
                terms_.push_back({&bucket.linked, MergeCounters::kBlendingOrBillboard, false});
                return;
            }
        }
        terms_.push_back({&bucket.linked, MergeCounters::kProperties, false});
        const PropertyList& properties = f.node->properties;
        for (std::uint32_t c : candidateClasses(bucket, signature, properties.size())) {
            PropertyClass& pc = bucket.classes[c];
            if (!equalPropertyLists(*pc.properties, properties)) {
                continue;
            }
            terms_.push_back({&pc.all, MergeCounters::kProperties, true});
            if (kind_ == MergeKind::Number && !hasDigitColor(f.material)) {
                continue;
            }
            searchClass(pc, f);
        }
    }

    void searchClass(PropertyClass& pc, const Facts& f) {
        Cell* cell = nullptr;
        if (kind_ == MergeKind::RenderNode) {
            terms_.push_back({&pc.all, MergeCounters::kPrimitive, false});
            if (f.primitive != kLineList && f.primitive != kTriangleList) {
                return;
            }
            auto it = pc.byPrimitive.find(f.primitive);
            if (it == pc.byPrimitive.end()) {
                return;
            }
            cell = &it->second;
            terms_.push_back({&cell->all, MergeCounters::kPrimitive, true});
            terms_.push_back({&cell->billboard, MergeCounters::kBlendingOrBillboard, false});
        } else {
            auto it = pc.byPrimitive.find(0);
            if (it == pc.byPrimitive.end()) {
                return;
            }
            cell = &it->second;
        }
        terms_.push_back({&cell->open, MergeCounters::kVisibility, false});
        auto same = cell->byVisibility.find(f.context->visibility);
        if (same == cell->byVisibility.end()) {
            return;
        }
        terms_.push_back({&same->second, MergeCounters::kVisibility, true});
        for (std::uint32_t g : same->second) {
            if (g >= bound_) {
                break;
            }
            const Facts& key = keys_[g];
            if (lodSeparates(*key.context, *f.context)) {
                lodRejected_.push_back(g);
                continue;
            }
            if (kind_ == MergeKind::FakeSpotLights &&
                !spotShapesMatch(static_cast<const FakeSpotLightsNode&>(*key.node),
                                 static_cast<const FakeSpotLightsNode&>(*f.node))) {
                spotRejected_.push_back(g);
                continue;
            }
            bound_ = g;
            break;
        }
    }

    // The classes whose lists may equal the node's: those with the same names, exact values and a
    // neighbouring cell, and any with a repeated name and the same length.
    static std::vector<std::uint32_t> candidateClasses(const MaterialBucket& bucket,
                                                       const PropertySignature& s, std::size_t size) {
        std::vector<std::uint32_t> out;
        if (s.distinctNames && s.finite) {
            for (double d : {-1.0, 0.0, 1.0}) {
                auto it = bucket.classesByLookup.find(s.lookupKey(s.cell + d));
                if (it != bucket.classesByLookup.end()) {
                    out.insert(out.end(), it->second.begin(), it->second.end());
                }
            }
        }
        for (std::uint32_t c : bucket.repeatedNameClasses) {
            if (bucket.classes[c].properties->size() == size) {
                out.push_back(c);
            }
        }
        std::sort(out.begin(), out.end());
        out.erase(std::unique(out.begin(), out.end()), out.end());
        return out;
    }

    void settle() {
        std::array<std::int64_t, 8> delta{};
        for (const Term& t : terms_) {
            auto n = static_cast<std::int64_t>(countBelow(*t.list, bound_));
            delta[t.reason] += t.subtract ? -n : n;
        }
        for (std::uint32_t g : lodRejected_) {
            delta[MergeCounters::kLod] += g < bound_ ? 1 : 0;
        }
        for (std::uint32_t g : spotRejected_) {
            delta[MergeCounters::kSpotShape] += g < bound_ ? 1 : 0;
        }
        for (std::size_t i = 0; i < delta.size(); ++i) {
            counters_.counts[i] += static_cast<std::uint32_t>(delta[i]);
        }
    }

    // Opens a group with f's node as key. Only a key that some node's test can get past the link
    // test with is indexed.
    void open(const Facts& f, const PropertySignature& signature, bool indexed) {
        auto g = static_cast<std::uint32_t>(groups_.size());
        groups_.push_back({f.node});
        keys_.push_back(f);
        if (!indexed) {
            return;
        }
        global_.push_back(g);
        MaterialBucket& bucket = buckets_[f.material];
        bucket.all.push_back(g);
        if (!f.oneLink) {
            return;
        }
        bucket.linked.push_back(g);
        PropertyClass& pc = classFor(bucket, f.node->properties, signature);
        pc.all.push_back(g);
        Cell& cell = pc.byPrimitive[f.primitive];
        cell.all.push_back(g);
        if (kind_ == MergeKind::RenderNode && f.context->billboard) {
            cell.billboard.push_back(g);
        } else {
            cell.open.push_back(g);
            cell.byVisibility[f.context->visibility].push_back(g);
        }
    }

    static PropertyClass& classFor(MaterialBucket& bucket, const PropertyList& properties,
                                   const PropertySignature& s) {
        auto [it, inserted] =
            bucket.classByBytes.try_emplace(s.exact, static_cast<std::uint32_t>(bucket.classes.size()));
        if (inserted) {
            bucket.classes.push_back({&properties, {}, {}});
            if (!s.distinctNames) {
                bucket.repeatedNameClasses.push_back(it->second);
            } else if (s.finite) {
                bucket.classesByLookup[s.lookupKey(s.cell)].push_back(it->second);
            }
        }
        return bucket.classes[it->second];
    }

    MergeKind kind_;
    MergeCounters& counters_;
    MergeContextCache contexts_;
    std::vector<MergeGroup> groups_;
    std::vector<Facts> keys_;
    // Every indexed key, whatever its material.
    GroupList global_;
    std::unordered_map<const BaseMaterial*, MaterialBucket> buckets_;
    // The search state of the node being placed.
    std::vector<Term> terms_;
    std::vector<std::uint32_t> lodRejected_;
    std::vector<std::uint32_t> spotRejected_;
    std::uint32_t bound_ = 0;
};

}  // namespace

NodeType nodeTypeOf(MergeKind kind) {
    switch (kind) {
        case MergeKind::RenderNode:
            return NodeType::RenderNode;
        case MergeKind::FakeOmniLights:
            return NodeType::FakeOmniLightsNode;
        case MergeKind::FakeSpotLights:
            return NodeType::FakeSpotLightsNode;
        case MergeKind::Number:
            return NodeType::NumberNode;
    }
    return NodeType::RenderNode;
}

bool canMergeAs(MergeKind kind, const BaseRenderNode& a, const BaseRenderNode& b, MergeCounters& counters) {
    switch (kind) {
        case MergeKind::RenderNode:
            return canMerge(static_cast<const RenderNode&>(a), static_cast<const RenderNode&>(b), counters);
        case MergeKind::FakeOmniLights:
            return canMerge(static_cast<const FakeOmniLightsNode&>(a),
                            static_cast<const FakeOmniLightsNode&>(b), counters);
        case MergeKind::FakeSpotLights:
            return canMerge(static_cast<const FakeSpotLightsNode&>(a),
                            static_cast<const FakeSpotLightsNode&>(b), counters);
        case MergeKind::Number:
            return canMerge(static_cast<const NumberNode&>(a), static_cast<const NumberNode&>(b), counters);
    }
    return false;
}

std::vector<MergeGroup> groupForMerge(MergeKind kind, const std::vector<Ptr<BaseRenderNode>>& nodes,
                                      MergeCounters& counters) {
    Grouper grouper(kind, counters);
    for (const Ptr<BaseRenderNode>& node : nodes) {
        grouper.place(node);
    }
    return grouper.take();
}

}  // namespace model::utils
