#include "model/utils/PrepareVertices.h"

#include <array>
#include <bit>
#include <cstring>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/ExtException.h"
#include "model/BaseMeshRenderNode.h"
#include "model/PropertiesSet.h"
#include "model/utils/CheckMaterials.h"
#include "model/utils/MeshChecks.h"

namespace model::utils {

namespace {

[[noreturn]] void fail(std::string_view message) {
    throw nq::ExtException(std::string(message));
}

// The channels that the material's table names.
std::array<bool, kTexCoordChannels> namedChannels(const PropertiesSet& m) {
    std::array<bool, kTexCoordChannels> named{};
    for (std::uint32_t channel : m.textureChannels) {
        if (channel != kNoTexCoordChannel) {
            named[channel] = true;
        }
    }
    return named;
}

void checkTable(const PropertiesSet& m) {
    std::string_view fault = materialLayoutFault(m);
    if (!fault.empty()) {
        fail(fault);
    }
}

void checkNode(const BaseMeshRenderNode& node, const PropertiesSet& m) {
    const Vertices& v = node.vertices;
    std::size_t count = v.vertexCount();
    std::array<bool, kTexCoordChannels> named = namedChannels(m);
    for (int channel = 0; channel < kTexCoordChannels; ++channel) {
        if (!named[channel]) {
            continue;
        }
        const VertexAttribute* attr = v.findAttribute(texCoordSemantic(channel));
        if (!attr || attr->size <= 0 || (count > 0 && attr->data.empty())) {
            fail(kEmptyTextureChannel);
        }
    }
    for (int s = 0; s < kVertexSemanticCount; ++s) {
        std::uint8_t wanted = m.vertexFormat[s];
        if (wanted == 0) {
            continue;
        }
        const VertexAttribute* attr = v.findAttribute(static_cast<VertexSemantic>(s));
        if (!attr || attr->size < wanted ||
            attr->data.size() != count * static_cast<std::size_t>(attr->size)) {
            fail(kWrongVertexSize);
        }
    }
}

// Drops what the format does not hold and shortens what is longer.
void settle(Vertices& v, const VertexFormat& format) {
    for (auto it = v.attributes.begin(); it != v.attributes.end();) {
        std::uint8_t wanted = format[it->first];
        if (wanted == 0) {
            it = v.attributes.erase(it);
            continue;
        }
        it->second.resize(wanted);
        ++it;
    }
}

bool sameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
}

std::size_t hashBits(const std::vector<float>& data, std::size_t seed) {
    for (float f : data) {
        seed = (seed ^ std::bit_cast<std::uint32_t>(f)) * 0x100000001B3ull;
    }
    return seed;
}

// Compacts one material's channels over its users; returns the number of channels taken out.
std::uint32_t compact(PropertiesSet& m, const std::vector<BaseMeshRenderNode*>& users) {
    std::array<bool, kTexCoordChannels> named = namedChannels(m);
    int present = 0;
    for (int p = 0; p < kTexCoordChannels; ++p) {
        present += m.vertexFormat[texCoordSemantic(p)] != 0 ? 1 : 0;
    }
    // Each named channel folds into the lowest named channel of the same size and bits.
    std::array<std::size_t, kTexCoordChannels> hash{};
    for (int p = 0; p < kTexCoordChannels; ++p) {
        if (named[p]) {
            hash[p] = m.vertexFormat[texCoordSemantic(p)];
            for (const BaseMeshRenderNode* node : users) {
                hash[p] = hashBits(node->vertices.attribute(texCoordSemantic(p)).data, hash[p]);
            }
        }
    }
    std::array<int, kTexCoordChannels> keptAs{};
    std::vector<int> kept;
    for (int p = 0; p < kTexCoordChannels; ++p) {
        if (!named[p]) {
            continue;
        }
        keptAs[p] = p;
        for (int q : kept) {
            if (hash[q] != hash[p] ||
                m.vertexFormat[texCoordSemantic(q)] != m.vertexFormat[texCoordSemantic(p)]) {
                continue;
            }
            bool equal = true;
            for (const BaseMeshRenderNode* node : users) {
                equal = equal && sameBits(node->vertices.attribute(texCoordSemantic(q)).data,
                                          node->vertices.attribute(texCoordSemantic(p)).data);
            }
            if (equal) {
                keptAs[p] = q;
                break;
            }
        }
        if (keptAs[p] == p) {
            kept.push_back(p);
        }
    }
    bool unchanged = static_cast<int>(kept.size()) == present;
    for (std::size_t i = 0; i < kept.size() && unchanged; ++i) {
        unchanged = kept[i] == static_cast<int>(i);
    }
    if (unchanged) {
        return 0;
    }
    std::array<std::uint32_t, kTexCoordChannels> newNumber{};
    for (std::size_t i = 0; i < kept.size(); ++i) {
        newNumber[kept[i]] = static_cast<std::uint32_t>(i);
    }
    for (std::uint32_t& channel : m.textureChannels) {
        if (channel != kNoTexCoordChannel) {
            channel = newNumber[keptAs[channel]];
        }
    }
    VertexFormat format = m.vertexFormat;
    for (int p = 0; p < kTexCoordChannels; ++p) {
        format[texCoordSemantic(p)] = 0;
    }
    for (std::size_t i = 0; i < kept.size(); ++i) {
        format[texCoordSemantic(static_cast<int>(i))] = m.vertexFormat[texCoordSemantic(kept[i])];
    }
    m.vertexFormat = format;
    for (BaseMeshRenderNode* node : users) {
        Vertices::AttributeMap& attrs = node->vertices.attributes;
        std::vector<VertexAttribute> moved;
        for (int p : kept) {
            moved.push_back(std::move(attrs.at(texCoordSemantic(p))));
        }
        for (int p = 0; p < kTexCoordChannels; ++p) {
            attrs.erase(texCoordSemantic(p));
        }
        for (std::size_t i = 0; i < moved.size(); ++i) {
            attrs[texCoordSemantic(static_cast<int>(i))] = std::move(moved[i]);
        }
    }
    return static_cast<std::uint32_t>(present - static_cast<int>(kept.size()));
}

}  // namespace

std::uint32_t prepareVertices(RootNode& root) {
    struct Work {
        BaseMeshRenderNode* node;
        PropertiesSet* material;
    };
    std::vector<Work> work;
    // Materials in the order first met, with their users; null users mark a material that a node
    // without a mesh of its own also uses, which is not compacted.
    std::vector<PropertiesSet*> materials;
    std::unordered_map<PropertiesSet*, std::vector<BaseMeshRenderNode*>> users;
    std::unordered_map<PropertiesSet*, bool> shared;
    std::unordered_set<const BaseRenderNode*> met;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        if (!met.insert(node.get()).second) {
            continue;
        }
        auto* m = dynamic_cast<PropertiesSet*>(node->material.get());
        if (!m) {
            continue;
        }
        if (users.try_emplace(m).second) {
            materials.push_back(m);
        }
        auto* mesh = dynamic_cast<BaseMeshRenderNode*>(node.get());
        if (!mesh) {
            shared[m] = true;
            continue;
        }
        if (mesh->indices.primitiveCount() == 0) {
            continue;
        }
        checkTable(*m);
        checkNode(*mesh, *m);
        work.push_back({mesh, m});
        users[m].push_back(mesh);
    }
    for (const Work& w : work) {
        settle(w.node->vertices, w.material->vertexFormat);
    }
    std::uint32_t removed = 0;
    for (PropertiesSet* m : materials) {
        if (!shared[m] && !users[m].empty()) {
            removed += compact(*m, users[m]);
        }
    }
    return removed;
}

}  // namespace model::utils
