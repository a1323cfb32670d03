#pragma once
// The material-based pass: render nodes that name a physical material become collision shells.

#include <cstdint>
#include <string_view>

#include "model/RootNode.h"

namespace model::utils {

// The user property that names a shell's physical material.
inline constexpr std::string_view kShellMaterialProperty = "material";

// Every render node of exact class RenderNode with one link whose user properties hold a text
// property "material" is replaced by a ShellNode: same name, user properties (the "material" one
// included) and tree node, the positions of its vertices in three floats, and its indices. The
// shell goes at the end of the shell list; the render list keeps the order of the nodes that stay.
// Returns the number of nodes converted.
std::uint32_t convertMaterialNodesToShells(RootNode& root);

}  // namespace model::utils
