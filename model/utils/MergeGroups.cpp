#include "model/utils/MergeGroups.h"

#include <algorithm>
#include <array>
#include <bit>
#include <string>
#include <unordered_map>

#include <fmt/format.h>

#include "core/ExtException.h"
#include "model/FakeOmniLightsNode.h"
#include "model/FakeSpotLightsNode.h"
#include "model/NodeCreators.h"
#include "model/NumberNode.h"
#include "model/utils/MeshChecks.h"

namespace model::utils {

namespace {

// A parent entry as merging compares it: the tree node and the bits of what goes with it.
struct ParentKey {
    const Node* node = nullptr;
    std::array<std::uint32_t, 3> extra{};
    bool operator==(const ParentKey&) const = default;
};

struct ParentKeyHash {
    std::size_t operator()(const ParentKey& k) const noexcept {
        std::size_t h = std::hash<const void*>{}(k.node);
        for (std::uint32_t e : k.extra) {
            h = h * 1000003u ^ e;
        }
        return h;
    }
};

ParentKey keyOf(const RenderLink& link) {
    return {link.node.get(), {link.argument, 0, 0}};
}
ParentKey keyOf(const Ptr<Node>& link) {
    return {link.get(), {}};
}
ParentKey keyOf(const FakeSpotLink& link) {
    return {link.node.get(),
            {std::bit_cast<std::uint32_t>(link.direction[0]), std::bit_cast<std::uint32_t>(link.direction[1]),
             std::bit_cast<std::uint32_t>(link.direction[2])}};
}

// The parent list of a merged node, with equal entries folded.
template <class Link>
class JoinedParents {
public:
    std::uint32_t numberOf(const Link& link) {
        auto [it, inserted] = numbers_.try_emplace(keyOf(link), static_cast<std::uint32_t>(links.size()));
        if (inserted) {
            links.push_back(link);
        }
        return it->second;
    }
    std::vector<Link> links;

private:
    std::unordered_map<ParentKey, std::uint32_t, ParentKeyHash> numbers_;
};

template <class T>
Ptr<T> createLike(const T& first) {
    const char* className = nodeTypeName(first.nodeType());
    Ptr<T> out = createNodeAs<T>(className);
    if (!out) {
        throw nq::ExtException(fmt::format("Class {} is not registered.", className));
    }
    out->material = first.material;
    out->properties = first.properties;
    out->version = first.version;
    out->root = first.root;
    return out;
}

// The floats an attribute holds, 0 when absent: where the next member's floats will begin.
std::size_t floatsOf(const Vertices& vertices, VertexSemantic semantic) {
    const VertexAttribute* attr = vertices.findAttribute(semantic);
    return attr ? attr->data.size() : 0;
}

// Vertices of a parent other than the first carry its number in the fourth float of POSITION0;
// those that still hold the exporter's 0 get it. The member's floats begin at start.
void tagParent(Vertices& vertices, std::uint32_t parent, std::size_t start) {
    VertexAttribute* position = vertices.findAttribute(POSITION0);
    if (!position || position->size != 4) {
        return;
    }
    for (std::size_t i = start + 3; i < position->data.size(); i += 4) {
        double rounded = static_cast<double>(position->data[i]) + 0.5;
        if (rounded > -1.0 && rounded < 1.0) {
            position->data[i] = static_cast<float>(parent);
        }
    }
}

// Appends the digit entries of a number node's one parent to the entries of the parent it joins.
// A digit names its entry by its number, in COLOR1 of each of its vertices and in word 1 of the
// entry; where the joined parent already holds entries, both move up by their count. The
// member's COLOR1 floats begin at start.
void appendDigits(std::vector<NumberEntry>& joined, const NumberNode& member, Vertices& vertices,
                  std::size_t start) {
    if (member.entries.empty()) {
        return;
    }
    const auto offset = static_cast<std::uint32_t>(joined.size());
    if (offset != 0) {
        if (VertexAttribute* digits = vertices.findAttribute(COLOR1)) {
            for (std::size_t i = start; i < digits->data.size(); ++i) {
                digits->data[i] += static_cast<float>(offset);
            }
        }
    }
    for (NumberEntry entry : member.entries[0]) {
        entry.words[1] += offset;
        joined.push_back(entry);
    }
}

template <class T>
Ptr<BaseRenderNode> mergeMeshes(std::span<const Ptr<BaseRenderNode>> members) {
    const T& first = static_cast<const T&>(*members[0]);
    Ptr<T> out = createLike(first);
    out->renderOption = first.renderOption;
    Vertices vertices = first.vertices;
    Indices indices = first.indices;
    JoinedParents<RenderLink> parents;
    parents.numberOf(first.links.at(0));
    if constexpr (std::is_same_v<T, NumberNode>) {
        out->entries = first.entries;
    }
    // The joined index list is sized once: growing it to the exact size member by member would
    // copy it again for each member.
    std::size_t indexCount = 0;
    for (const Ptr<BaseRenderNode>& member : members) {
        indexCount += static_cast<const T&>(*member).indices.indices.size();
    }
    indices.indices.reserve(indexCount);
    // So are the joined attributes; each member's vertices are appended as they stand and then
    // tagged in place.
    for (auto& [semantic, attr] : vertices.attributes) {
        std::size_t floats = 0;
        for (const Ptr<BaseRenderNode>& member : members) {
            if (const VertexAttribute* a = static_cast<const T&>(*member).vertices.findAttribute(semantic)) {
                floats += a->data.size();
            }
        }
        attr.data.reserve(floats);
    }
    for (const Ptr<BaseRenderNode>& member : members.subspan(1)) {
        const T& m = static_cast<const T&>(*member);
        std::uint32_t parent = parents.numberOf(m.links.at(0));
        auto base = static_cast<std::uint32_t>(vertices.vertexCount());
        const std::size_t positionStart = floatsOf(vertices, POSITION0);
        const std::size_t digitStart = floatsOf(vertices, COLOR1);
        if (!vertices.append(m.vertices)) {
            throw nq::ExtException(std::string(kWrongVertexSize));
        }
        tagParent(vertices, parent, positionStart);
        if constexpr (std::is_same_v<T, NumberNode>) {
            if (out->entries.size() < parents.links.size()) {
                out->entries.resize(parents.links.size());
            }
            appendDigits(out->entries[parent], m, vertices, digitStart);
        }
        std::vector<std::uint32_t>& joined = indices.indices;
        const std::size_t at = joined.size();
        joined.resize(at + m.indices.indices.size());
        std::transform(m.indices.indices.begin(), m.indices.indices.end(),
                       joined.begin() + static_cast<std::ptrdiff_t>(at),
                       [base](std::uint32_t index) { return index + base; });
    }
    out->setMesh(std::move(parents.links), std::move(indices), std::move(vertices));
    return out;
}

template <class T>
Ptr<BaseRenderNode> mergeLights(std::span<const Ptr<BaseRenderNode>> members) {
    const T& first = static_cast<const T&>(*members[0]);
    Ptr<T> out = createLike(first);
    JoinedParents<typename decltype(out->links)::value_type> parents;
    parents.links.reserve(8);
    out->lights.reserve(32);
    for (const Ptr<BaseRenderNode>& member : members) {
        const T& m = static_cast<const T&>(*member);
        std::vector<std::uint32_t> joined;
        joined.reserve(m.links.size());
        for (const auto& link : m.links) {
            joined.push_back(parents.numberOf(link));
        }
        for (auto light : m.lights) {
            if (light.parent < joined.size()) {
                light.parent = joined[light.parent];
            }
            out->lights.push_back(light);
        }
        if constexpr (std::is_same_v<T, FakeSpotLightsNode>) {
            out->directions.insert(out->directions.end(), m.directions.begin(), m.directions.end());
        }
    }
    out->links = std::move(parents.links);
    return out;
}

}  // namespace

Ptr<BaseRenderNode> mergeMembers(MergeKind kind, std::span<const Ptr<BaseRenderNode>> members) {
    if (members.size() <= 1) {
        return members.empty() ? Ptr<BaseRenderNode>() : members[0];
    }
    switch (kind) {
        case MergeKind::RenderNode:
            return mergeMeshes<RenderNode>(members);
        case MergeKind::Number:
            return mergeMeshes<NumberNode>(members);
        case MergeKind::FakeOmniLights:
            return mergeLights<FakeOmniLightsNode>(members);
        case MergeKind::FakeSpotLights:
            return mergeLights<FakeSpotLightsNode>(members);
    }
    return {};
}

}  // namespace model::utils
