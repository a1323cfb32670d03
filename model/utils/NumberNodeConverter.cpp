#include "model/utils/NumberNodeConverter.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/ExtException.h"
#include "model/NodeCreators.h"
#include "model/PropertiesSet.h"
#include "model/TmpNumberRoot.h"

namespace model::utils {

namespace {

[[noreturn]] void fail(std::string_view message) {
    throw nq::ExtException(std::string(message));
}

bool isListPrimitive(std::uint32_t primitive) {
    return primitive == kLineList || primitive == kTriangleList;
}

// The digits are drawn as one mesh, so they must agree in what one mesh cannot vary.
bool digitsFit(std::span<const Ptr<RenderNode>> digits) {
    const RenderNode& first = *digits[0];
    if (!dynamic_cast<const PropertiesSet*>(first.material.get()) || first.links.empty() ||
        !isListPrimitive(first.indices.primitive)) {
        return false;
    }
    return std::all_of(digits.begin() + 1, digits.end(), [&](const Ptr<RenderNode>& d) {
        return d->material.get() == first.material.get() && d->indices.primitive == first.indices.primitive &&
               equalPropertyLists(d->properties, first.properties);
    });
}

// The rectangle of the lowest texture-coordinate channel with two floats per vertex.
std::array<float, 4> texCoordRect(const Vertices& vertices) {
    for (int channel = 0; channel < 16; ++channel) {
        const VertexAttribute* a = vertices.findAttribute(texCoordSemantic(channel));
        if (!a || a->size < 2 || a->data.empty()) {
            continue;
        }
        std::array<float, 4> r{a->data[0], a->data[1], a->data[0], a->data[1]};
        for (std::size_t i = 0; i + 1 < a->data.size(); i += static_cast<std::size_t>(a->size)) {
            r[0] = std::min(r[0], a->data[i]);
            r[1] = std::min(r[1], a->data[i + 1]);
            r[2] = std::max(r[2], a->data[i]);
            r[3] = std::max(r[3], a->data[i + 1]);
        }
        return r;
    }
    return {};
}

std::uint32_t packHalves(float low, float high) {
    return static_cast<std::uint32_t>(halfBits(low)) | static_cast<std::uint32_t>(halfBits(high)) << 16;
}

}  // namespace

std::uint16_t halfBits(float value) {
    const std::uint32_t f = std::bit_cast<std::uint32_t>(value);
    const auto sign = static_cast<std::uint16_t>((f >> 16) & 0x8000u);
    const std::uint32_t magnitude = f & 0x7FFFFFFFu;
    if (magnitude > 0x7F800000u) {
        return sign | 0x7E00u;  // a quiet not-a-number
    }
    if (magnitude >= 0x477FF000u) {
        return sign | 0x7C00u;  // 65520 and above round to infinity
    }
    if (magnitude < 0x38800000u) {
        // Below the smallest normal half: a multiple of 2^-24, exact after the scaling.
        float scaled = std::bit_cast<float>(magnitude) * 16777216.0f;
        return sign | static_cast<std::uint16_t>(std::nearbyint(scaled));
    }
    std::uint32_t h = (magnitude - 0x38000000u) >> 13;
    const std::uint32_t rest = magnitude & 0x1FFFu;
    if (rest > 0x1000u || (rest == 0x1000u && (h & 1u))) {
        ++h;
    }
    return sign | static_cast<std::uint16_t>(h);
}

NumberEntry digitEntry(const RenderNode& digit, std::uint32_t digitNumber) {
    const std::array<float, 4> r = texCoordRect(digit.vertices);
    NumberEntry e;
    e.words = {digit.links.empty() ? kNoArgument : digit.links[0].argument, digitNumber,
               packHalves(r[0], r[1]), packHalves(r[2], r[3])};
    return e;
}

bool mergeDigits(NumberNode& number, std::span<const Ptr<RenderNode>> digits) {
    if (digits.empty() || number.linkCount() > 1 || !digitsFit(digits)) {
        return false;
    }
    const RenderNode& first = *digits[0];
    Vertices vertices;
    Indices indices(first.indices.primitive, {});
    std::vector<NumberEntry> entries;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const RenderNode& digit = *digits[i];
        const auto digitNumber = static_cast<std::uint32_t>(i);
        Vertices copy = digit.vertices;
        copy.setAttribute(COLOR1, 1, std::vector<float>(copy.vertexCount(), static_cast<float>(digitNumber)));
        const auto base = static_cast<std::uint32_t>(vertices.vertexCount());
        if (i == 0) {
            vertices = std::move(copy);
        } else if (!vertices.append(copy)) {
            return false;
        }
        for (std::uint32_t index : digit.indices.indices) {
            indices.indices.push_back(index + base);
        }
        entries.push_back(digitEntry(digit, digitNumber));
    }
    nq::Ptr<PropertiesSet> material(new PropertiesSet(static_cast<const PropertiesSet&>(*first.material)));
    material->vertexFormat[COLOR1] = 1;
    number.material = material;
    number.properties = first.properties;
    number.version = first.version;
    number.renderOption = first.renderOption;
    number.setMesh({first.links[0]}, std::move(indices), std::move(vertices));
    number.entries = {std::move(entries)};
    return true;
}

}  // namespace model::utils

namespace model {

namespace {

// The number root at or above a tree node, or null.
TmpNumberRoot* numberRootOf(const Ptr<Node>& node) {
    TmpNumberRoot* found = nullptr;
    if (node) {
        node->visitAncestors([&](const Ptr<Node>& n) {
            if (n->nodeType() == NodeType::TmpNumberRoot) {
                found = static_cast<TmpNumberRoot*>(n.get());
            }
            return found == nullptr;
        });
    }
    return found;
}

struct NumberRootDigits {
    TmpNumberRoot* numberRoot = nullptr;
    std::vector<Ptr<RenderNode>> digits;
};

// The digits of each number root, number roots in first-seen order.
std::vector<NumberRootDigits> findDigits(const RootNode& root) {
    std::vector<NumberRootDigits> found;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        TmpNumberRoot* numberRoot = node->linkCount() > 0 ? numberRootOf(node->link(0)) : nullptr;
        if (!numberRoot) {
            continue;
        }
        if (node->nodeType() != NodeType::RenderNode) {
            utils::fail(utils::kOnlyRenderDigits);
        }
        if (numberRoot->hasChildren()) {
            utils::fail(utils::kNumberRootChildfree);
        }
        if (node->linkCount() != 1) {
            utils::fail(utils::kOneControlNode);
        }
        auto entry = std::find_if(found.begin(), found.end(),
                                  [&](const NumberRootDigits& d) { return d.numberRoot == numberRoot; });
        if (entry == found.end()) {
            entry = found.insert(found.end(), NumberRootDigits{numberRoot, {}});
        }
        entry->digits.push_back(Ptr<RenderNode>(static_cast<RenderNode*>(node.get())));
    }
    return found;
}

// Digits split by material object, in first-seen order.
std::vector<std::vector<Ptr<RenderNode>>> byMaterial(const std::vector<Ptr<RenderNode>>& digits) {
    std::vector<std::vector<Ptr<RenderNode>>> groups;
    for (const Ptr<RenderNode>& digit : digits) {
        auto group = std::find_if(groups.begin(), groups.end(), [&](const std::vector<Ptr<RenderNode>>& g) {
            return g.front()->material.get() == digit->material.get();
        });
        if (group == groups.end()) {
            groups.push_back({digit});
        } else {
            group->push_back(digit);
        }
    }
    return groups;
}

}  // namespace

bool numberNodeConverter(RootNode* root) {
    const std::vector<NumberRootDigits> found = findDigits(*root);
    if (found.empty()) {
        return false;
    }
    std::vector<Ptr<BaseRenderNode>> numbers;
    std::unordered_set<const BaseRenderNode*> digits;
    for (const NumberRootDigits& entry : found) {
        for (const std::vector<Ptr<RenderNode>>& group : byMaterial(entry.digits)) {
            Ptr<NumberNode> number = createNodeAs<NumberNode>("model::NumberNode");
            if (!number || !utils::mergeDigits(*number, group)) {
                utils::fail(utils::kCantMergeDigits);
            }
            number->name = entry.numberRoot->name;
            numbers.push_back(number);
            for (const Ptr<RenderNode>& digit : group) {
                digits.insert(digit.get());
            }
        }
    }
    std::vector<Ptr<BaseRenderNode>> kept;
    for (const Ptr<BaseRenderNode>& node : root->renderNodes()) {
        if (digits.count(node.get())) {
            node->root = nullptr;
        } else {
            kept.push_back(node);
        }
    }
    root->setRenderNodes(std::move(kept));
    for (Ptr<BaseRenderNode>& number : numbers) {
        root->addRenderNode(std::move(number));
    }
    return true;
}

}  // namespace model
