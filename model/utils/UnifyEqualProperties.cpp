#include "model/utils/UnifyEqualProperties.h"

#include <functional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/ExtException.h"
#include "model/PropertyValue.h"

namespace model::utils {

namespace {

void mix(std::size_t& seed, std::size_t value) {
    seed ^= value + 0x9E3779B97F4A7C15ull + (seed << 6) + (seed >> 2);
}

bool slotsEqual(const Texture& a, const Texture& b) {
    if (a.name == b.name && a.wrapU == b.wrapU && a.wrapV == b.wrapV && a.filter == b.filter &&
        a.mipFilter == b.mipFilter && a.texCoordChannel == b.texCoordChannel) {
        bool near = true;
        for (int i = 0; i < 16 && near; ++i) {
            near = nearlyEqual(a.matrix[i], b.matrix[i]);
        }
        if (near) {
            return true;
        }
    }
    return a.empty() && b.empty();
}

std::size_t distinctMaterials(const RootNode& root) {
    std::unordered_set<const BaseMaterial*> distinct;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        distinct.insert(node->material.get());
    }
    return distinct.size();
}

// Each pair of distinct materials that some render node pair holds in this order (the first
// node of one before the last node of the other) must not be equal.
void verifyUnified(const RootNode& root) {
    struct Span {
        std::size_t first, last;
    };
    std::unordered_map<const BaseMaterial*, Span> spans;
    std::vector<const BaseMaterial*> order;
    const auto& list = root.renderNodes();
    for (std::size_t i = 0; i < list.size(); ++i) {
        const BaseMaterial* m = list[i]->material.get();
        auto [it, inserted] = spans.try_emplace(m, Span{i, i});
        if (inserted) {
            order.push_back(m);
        } else {
            it->second.last = i;
        }
    }
    std::unordered_map<std::size_t, std::vector<const BaseMaterial*>> byHash;
    for (const BaseMaterial* m : order) {
        byHash[materialHash(m)].push_back(m);
    }
    for (const auto& [hash, bucket] : byHash) {
        for (const BaseMaterial* p : bucket) {
            for (const BaseMaterial* q : bucket) {
                if (p != q && spans[p].first < spans[q].last && areEqualMaterials(p, q)) {
                    throw nq::ExtException("There is still equal properties sets.");
                }
            }
        }
    }
}

}  // namespace

bool areEqual(const PropertiesSet& a, const PropertiesSet& b) {
    if (a.name != b.name || a.blending != b.blending || !(a.vertexFormat == b.vertexFormat) ||
        a.textureChannels != b.textureChannels || a.materialName != b.materialName) {
        return false;
    }
    if (a.depthBias != b.depthBias || a.shadowFlagA != b.shadowFlagA || a.shadowFlagB != b.shadowFlagB) {
        return false;
    }
    if (a.decal != b.decal || a.billboard != b.billboard || a.billboardType != b.billboardType ||
        a.billboardMode != b.billboardMode) {
        return false;
    }
    for (int i = 0; i < PropertiesSet::kTextureSlots; ++i) {
        if (!slotsEqual(a.textures[i], b.textures[i])) {
            return false;
        }
    }
    return equalPropertyLists(a.uniforms, b.uniforms);
}

bool areEqualMaterials(const BaseMaterial* a, const BaseMaterial* b) {
    const auto* pa = dynamic_cast<const PropertiesSet*>(a);
    const auto* pb = dynamic_cast<const PropertiesSet*>(b);
    return pa && pb && areEqual(*pa, *pb);
}

std::size_t materialHash(const BaseMaterial* material) {
    const auto* m = dynamic_cast<const PropertiesSet*>(material);
    if (!m) {
        return std::hash<const void*>{}(material);
    }
    std::hash<std::string_view> text;
    std::size_t seed = text(m->name);
    for (std::size_t v : {std::size_t{m->blending}, std::size_t{m->depthBias}, std::size_t{m->shadowFlagA},
                          std::size_t{m->shadowFlagB}, std::size_t{m->decal}, std::size_t{m->billboard},
                          std::size_t{m->billboardType}, std::size_t{m->billboardMode}, m->uniforms.size()}) {
        mix(seed, v);
    }
    for (std::uint8_t count : m->vertexFormat.counts) {
        mix(seed, count);
    }
    for (std::uint32_t channel : m->textureChannels) {
        mix(seed, channel);
    }
    mix(seed, text(m->materialName));
    for (const Texture& t : m->textures) {
        if (t.empty()) {
            mix(seed, 0);
            continue;
        }
        mix(seed, text(t.name));
        for (std::uint32_t v : {t.wrapU, t.wrapV, t.filter, t.mipFilter, t.texCoordChannel}) {
            mix(seed, v);
        }
    }
    return seed;
}

bool unifyEqualProperties(RootNode& root) {
    std::size_t before = distinctMaterials(root);
    std::unordered_set<const BaseMaterial*> seen;
    std::unordered_map<std::size_t, std::vector<MaterialPtr>> seenByHash;
    std::unordered_map<const BaseMaterial*, MaterialPtr> replacement;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        const BaseMaterial* m = node->material.get();
        if (auto r = replacement.find(m); r != replacement.end()) {
            node->material = r->second;
            continue;
        }
        if (seen.contains(m)) {
            continue;
        }
        std::vector<MaterialPtr>& bucket = seenByHash[materialHash(m)];
        MaterialPtr equal;
        for (const MaterialPtr& s : bucket) {
            if (areEqualMaterials(m, s.get())) {
                equal = s;
                break;
            }
        }
        if (equal) {
            replacement.emplace(m, equal);
            node->material = equal;
        } else {
            seen.insert(m);
            bucket.push_back(node->material);
        }
    }
    verifyUnified(root);
    return distinctMaterials(root) != before;
}

}  // namespace model::utils
