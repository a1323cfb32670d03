#pragma once
// Turns the digit meshes that hang on a TmpNumberRoot into number nodes: one NumberNode for the
// digits of one material, drawn as one mesh whose digits the renderer selects by an argument.

#include <cstdint>
#include <span>
#include <string_view>

#include "model/NumberNode.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"

namespace model::utils {

inline constexpr std::string_view kOnlyRenderDigits = "Only render nodes can be digits.";
inline constexpr std::string_view kNumberRootChildfree = "TmpNumberRoot must be childfree.";
inline constexpr std::string_view kOneControlNode = "Number of control nodes must be == 1.";
inline constexpr std::string_view kCantMergeDigits = "Can't merge digits.";

// The 16-byte entry of one digit: word 0 the argument of the digit's link, word 1 the digit's
// number within its number node (also stored in every vertex of the digit as its COLOR1), words
// 2 and 3 the rectangle that the digit's lowest texture-coordinate channel covers, as half
// floats: (u min | v min << 16) and (u max | v max << 16). A digit without texture coordinates
// has an empty rectangle of zeros.
NumberEntry digitEntry(const RenderNode& digit, std::uint32_t digitNumber);

// The IEEE half-precision bits of a float, rounded to nearest even.
std::uint16_t halfBits(float value);

// Lets an empty number node take a group of digits. False, and the number node unchanged, when
// the number node already holds more than one link, when a digit has no material or a material
// that is not a PropertiesSet, when the digits differ in material object, user properties or
// primitive (which must be a line or triangle list), or when their vertex layouts differ.
// Otherwise the number node gets the first digit's link, a copy of its material (with a COLOR1 of
// one float in its vertex format), user properties, class version and render option; the digits'
// meshes are appended in order, each vertex tagged in COLOR1 with its digit's number, and each
// digit adds its digitEntry to the list of the one link.
bool mergeDigits(NumberNode& number, std::span<const Ptr<RenderNode>> digits);

}  // namespace model::utils

namespace model {

// Finds the digits: the render nodes whose tree node, or an ancestor of it, is a TmpNumberRoot.
// For each such render node, in list order, throws nq::ExtException with kOnlyRenderDigits when
// it is not exactly a RenderNode, kNumberRootChildfree when its number root has children, and
// kOneControlNode when it has not exactly one link. The digits of each number root are split by
// material object in first-seen order; each group becomes one NumberNode (named after its number
// root) at the end of the render list, or fails with kCantMergeDigits. The digits then leave the
// render list, which keeps the order of the rest. Returns false, having changed nothing, when no
// render node hangs under a number root.
bool numberNodeConverter(RootNode* root);

}  // namespace model
