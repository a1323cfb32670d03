#include "model/io/NqfSummary.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace model::io {
namespace {

struct Geometry {
    const NqfVertices* vertices = nullptr;
    const NqfIndices* indices = nullptr;
};

Geometry geometryOf(const NqfBody& body) {
    return std::visit(
        [](const auto& b) -> Geometry {
            using B = std::decay_t<decltype(b)>;
            if constexpr (requires {
                              b.vertices;
                              b.indices;
                          }) {
                return {&b.vertices, &b.indices};
            } else if constexpr (std::is_same_v<B, NqfFakeSpots3Body>) {
                return {&b.lights, nullptr};
            } else {
                return {};
            }
        },
        body);
}

// The tree nodes a list node hangs on, in link order.
std::vector<std::uint32_t> linksOf(const NqfBody& body) {
    return std::visit(
        [](const auto& b) -> std::vector<std::uint32_t> {
            using B = std::decay_t<decltype(b)>;
            if constexpr (std::is_same_v<B, NqfConnectorBody> || std::is_same_v<B, NqfShellBody> ||
                          std::is_same_v<B, NqfSegmentsBody>) {
                return {b.controlNode};
            } else if constexpr (std::is_same_v<B, NqfLightBody>) {
                return {b.link};
            } else if constexpr (std::is_same_v<B, NqfRenderBody>) {
                std::vector<std::uint32_t> out;
                for (const NqfRenderLink& l : b.links) {
                    out.push_back(l.node);
                }
                return out;
            } else if constexpr (std::is_same_v<B, NqfSkinBody>) {
                return b.bones;
            } else if constexpr (std::is_same_v<B, NqfFakeLightsBody> ||
                                 std::is_same_v<B, NqfFakeSpots3Body>) {
                return b.links;
            } else {
                return {};
            }
        },
        body);
}

const std::uint32_t* materialOf(const NqfNode& node) {
    if (node.head.className == "model::ShellSkinNode") {
        return nullptr;  // a shell has no material
    }
    return std::visit(
        [](const auto& b) -> const std::uint32_t* {
            using B = std::decay_t<decltype(b)>;
            if constexpr (std::is_same_v<B, NqfRenderBody> || std::is_same_v<B, NqfFakeLightsBody> ||
                          std::is_same_v<B, NqfFakeSpots3Body> || std::is_same_v<B, NqfSkinBody>) {
                return &b.material;
            } else {
                return nullptr;
            }
        },
        node.body);
}

std::string counted(std::size_t n, std::string_view noun) {
    return fmt::format("{} {}{}", n, noun, n == 1 ? "" : "s");
}

}  // namespace

std::string summary(const NqfDocument& d) {
    std::string out;
    auto line = [&out](std::size_t indent, const std::string& text) {
        out.append(2 * indent, ' ');
        out += text;
        out += '\n';
    };
    std::uint64_t vertexCount = 0, indexCount = 0, listNodes = 0;
    auto count = [&](const NqfBody& body) {
        const Geometry g = geometryOf(body);
        vertexCount += g.vertices ? g.vertices->count : 0;
        indexCount += g.indices ? g.indices->values.size() : 0;
        return g;
    };

    line(0, fmt::format("Tree ({})", counted(d.tree.size(), "node")));
    std::vector<std::size_t> depth(d.tree.size(), 0);
    for (std::size_t i = 0; i < d.tree.size(); ++i) {
        const std::uint32_t parent = i < d.parents.size() ? d.parents[i] : kNoIndex;
        depth[i] = parent < i ? depth[parent] + 1 : 0;
        const NqfNode& n = d.tree[i];
        count(n.body);
        line(1 + depth[i], fmt::format("{} \"{}\"", n.head.className, n.head.name));
    }

    line(0, fmt::format("Groups ({})", d.groups.size()));
    for (const NqfGroup& g : d.groups) {
        line(1, fmt::format("{} ({})", g.name, counted(g.nodes.size(), "node")));
        for (const NqfNode& n : g.nodes) {
            ++listNodes;
            std::string text = fmt::format("{} \"{}\"", n.head.className, n.head.name);
            if (const std::uint32_t* m = materialOf(n); m && *m < d.root.materials.size()) {
                text += fmt::format(", material {} \"{}\"", *m, d.root.materials[*m].name);
            }
            std::vector<std::string> names;
            for (std::uint32_t link : linksOf(n.body)) {
                names.push_back(link < d.tree.size() ? fmt::format("\"{}\"", d.tree[link].head.name) : "?");
            }
            if (!names.empty()) {
                text += fmt::format(", on {}", fmt::join(names, ", "));
            }
            const Geometry geometry = count(n.body);
            if (geometry.vertices) {
                text += fmt::format(", {} vertices", geometry.vertices->count);
            }
            if (geometry.indices) {
                text += fmt::format(", {} indices", geometry.indices->values.size());
            }
            line(2, text);
        }
    }

    line(0, fmt::format("Materials ({})", d.root.materials.size()));
    for (std::size_t i = 0; i < d.root.materials.size(); ++i) {
        const NqfMaterial& m = d.root.materials[i];
        line(1, fmt::format("[{}] \"{}\", material \"{}\", {} textures, {} uniforms, {} animated uniforms", i,
                            m.name, m.materialName, m.textures.size(), m.uniforms.size(),
                            m.animatedUniforms.size()));
        for (const NqfTexture& t : m.textures) {
            line(2, fmt::format("slot {}: \"{}\"", t.slot, t.name));
        }
    }

    line(0, fmt::format(
                "Counts: {} nodes ({} tree, {} list), {} materials, {} vertices, {} indices, {} strings, "
                "{} handles",
                d.tree.size() + listNodes, d.tree.size(), listNodes, d.root.materials.size(), vertexCount,
                indexCount, d.strings.size(), d.root.numHandles));
    return out;
}

}  // namespace model::io
