#include "model/utils/CanMerge.h"

#include "core/ExtException.h"
#include "model/PropertiesSet.h"
#include "model/PropertyValue.h"
#include "model/utils/MergeContext.h"

namespace model::utils {

namespace {

// Steps shared by every kind once material and links are settled: the tree tests.
bool sameTreeContext(const BaseNode& a, const BaseNode& b, MergeCounters& counters) {
    Ptr<Node> pa = a.link(0);
    Ptr<Node> pb = b.link(0);
    if (visibilitySeparates(pa, pb)) {
        counters.reject(MergeCounters::kVisibility);
        return false;
    }
    if (lodSeparates(pa, pb)) {
        counters.reject(MergeCounters::kLod);
        return false;
    }
    return true;
}

bool sameProperties(const BaseNode& a, const BaseNode& b, MergeCounters& counters) {
    if (!equalPropertyLists(a.properties, b.properties)) {
        counters.reject(MergeCounters::kProperties);
        return false;
    }
    return true;
}

bool sameMaterial(const BaseRenderNode& a, const BaseRenderNode& b, MergeCounters& counters) {
    if (a.material.get() != b.material.get()) {
        counters.reject(MergeCounters::kMaterial);
        return false;
    }
    return true;
}

bool isMergeablePrimitive(std::uint32_t primitive) {
    return primitive == kLineList || primitive == kTriangleList;
}

template <class Lights>
bool canMergeLights(const Lights& a, const Lights& b, MergeCounters& counters) {
    return &a != &b && sameMaterial(a, b, counters) && a.linkCount() == 1 && b.linkCount() == 1 &&
           sameProperties(a, b, counters) && sameTreeContext(a, b, counters);
}

}  // namespace

std::uint8_t blendingOf(const BaseMaterial* material) {
    const auto* m = dynamic_cast<const PropertiesSet*>(material);
    return m ? m->blending : 0;
}

bool hasDigitColor(const BaseMaterial* material) {
    const auto* m = dynamic_cast<const PropertiesSet*>(material);
    return m && m->vertexFormat[COLOR1] == 1;
}

bool spotShapesMatch(const FakeSpotLightsNode& a, const FakeSpotLightsNode& b) {
    if (a.lights.empty() || b.lights.empty()) {
        return false;
    }
    const osg::Vec2f& x = a.lights.front().backTexLB;
    const osg::Vec2f& y = b.lights.front().backTexLB;
    return nearlyEqual(x[0], y[0]) && nearlyEqual(x[1], y[1]) && a.directions.empty() == b.directions.empty();
}

bool canMerge(const RenderNode& a, const RenderNode& b, MergeCounters& counters) {
    if (&a == &b || a.linkCount() != 1 || b.linkCount() != 1) {
        return false;
    }
    if (!sameMaterial(a, b, counters)) {
        return false;
    }
    if (!a.material) {
        throw nq::ExtException("Material of render node isn't set.");
    }
    if (blendingOf(a.material.get()) == kUnmergedBlending) {
        counters.reject(MergeCounters::kBlendingOrBillboard);
        return false;
    }
    if (!sameProperties(a, b, counters)) {
        return false;
    }
    if (!isMergeablePrimitive(a.indices.primitive) || b.indices.primitive != a.indices.primitive) {
        counters.reject(MergeCounters::kPrimitive);
        return false;
    }
    if (isUnderBillboard(a.link(0).get())) {
        counters.reject(MergeCounters::kBlendingOrBillboard);
        return false;
    }
    return sameTreeContext(a, b, counters);
}

bool canMerge(const FakeOmniLightsNode& a, const FakeOmniLightsNode& b, MergeCounters& counters) {
    return canMergeLights(a, b, counters);
}

bool canMerge(const FakeSpotLightsNode& a, const FakeSpotLightsNode& b, MergeCounters& counters) {
    if (!canMergeLights(a, b, counters)) {
        return false;
    }
    if (!spotShapesMatch(a, b)) {
        counters.reject(MergeCounters::kSpotShape);
        return false;
    }
    return true;
}

bool canMerge(const NumberNode& a, const NumberNode& b, MergeCounters& counters) {
    if (&a == &b || a.linkCount() != 1 || b.linkCount() != 1) {
        return false;
    }
    return sameMaterial(a, b, counters) && sameProperties(a, b, counters) &&
           hasDigitColor(a.material.get()) && sameTreeContext(a, b, counters);
}

}  // namespace model::utils
