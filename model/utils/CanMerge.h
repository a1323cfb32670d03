#pragma once
// The tests that decide whether two render nodes of one kind merge. Each runs its steps in a fixed
// order; the first that fails ends the test and adds 1 to the counter of its reason, where it has
// one.

#include "model/FakeOmniLightsNode.h"
#include "model/FakeSpotLightsNode.h"
#include "model/NumberNode.h"
#include "model/RenderNode.h"
#include "model/utils/MergeCounters.h"

namespace model::utils {

// The blending mode of a material that is drawn in its own sort order and never merged.
inline constexpr std::uint8_t kUnmergedBlending = 1;

// The blending of a material, or 0 when it is not a PropertiesSet.
std::uint8_t blendingOf(const BaseMaterial* material);
// The material's vertex format has one float of COLOR1, as a number node's digits need.
bool hasDigitColor(const BaseMaterial* material);
// The spot shape of a fake spot light node: the first two-float entry that only spot lights carry,
// of its first light. Equal within 1e-5 per component, and both nodes with or both without a list
// of directions.
bool spotShapesMatch(const FakeSpotLightsNode& a, const FakeSpotLightsNode& b);

// 1. a and b are different objects with one link each (no counter); 2. same material object
// (kMaterial); 3. the material is set (else nq::ExtException "Material of render node isn't
// set."); 4. its blending is not kUnmergedBlending (kBlendingOrBillboard); 5. equal user properties
// as sets (kProperties); 6. a's primitive is a line or triangle list and b's is the same
// (kPrimitive); 7. no BillboardNode at or above a's parent (kBlendingOrBillboard); 8. no
// ArgVisibilityNode between either parent and their lowest common ancestor (kVisibility); 9. that
// ancestor is not a LodNode (kLod).
bool canMerge(const RenderNode& a, const RenderNode& b, MergeCounters& counters);

// a and b differ; same material (kMaterial); one link each; equal user properties (kProperties);
// visibility (kVisibility); level of detail (kLod).
bool canMerge(const FakeOmniLightsNode& a, const FakeOmniLightsNode& b, MergeCounters& counters);

// As for omni lights, then spotShapesMatch (kSpotShape).
bool canMerge(const FakeSpotLightsNode& a, const FakeSpotLightsNode& b, MergeCounters& counters);

// a and b differ, one link each; same material (kMaterial); equal user properties (kProperties);
// hasDigitColor (no counter); visibility (kVisibility); level of detail (kLod).
bool canMerge(const NumberNode& a, const NumberNode& b, MergeCounters& counters);

}  // namespace model::utils
