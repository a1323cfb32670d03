#pragma once
// The vertex pass that runs before welding: every render node's vertices are brought to the
// vertex format of its material, and the texture-coordinate channels of each material are
// compacted.

#include <cstdint>
#include <string_view>

#include "model/RootNode.h"

namespace model::utils {

inline constexpr std::string_view kBrokenTextureChannels = "Broken texture channels";
inline constexpr std::string_view kEmptyTextureChannel = "Empty texture channel";

// Works on the render nodes with a mesh and a PropertiesSet material whose index list makes at
// least one primitive (the others are dropped as empty later and are left alone).
//
// 1. Checks, over all those nodes in list order, before anything changes; the first failure is
//    thrown as nq::ExtException:
//    - "Broken texture channels": an entry of the material's texture channel table names a
//      channel past TEXCOORD15, or one that the material's vertex format does not hold;
//    - "Wrong vertex size.": the format has no POSITION0;
//    - "Empty texture channel": the node has no data for a channel that the table names (no
//      attribute, or one without floats while the node has vertices);
//    - "Wrong vertex size.": the node lacks another attribute of the format, holds one with fewer
//      floats than the format, or the attributes it keeps do not hold whole vertices of one count.
// 2. Each node keeps exactly the format's attributes: an attribute that the format does not hold
//    is dropped, one with more floats keeps the first ones of each vertex.
// 3. Each material whose users all have meshes gets its texture-coordinate channels compacted:
//    channels that no table entry names are dropped; a named channel whose data equals, bit for
//    bit in every user, that of a lower named channel of the same size is folded into it; the
//    channels left are renumbered from TEXCOORD0 in their order. Table, format and every user's
//    attributes change together.
// Returns the number of texture-coordinate channels taken out of materials.
std::uint32_t prepareVertices(RootNode& root);

}  // namespace model::utils
