#pragma once
// The material check of the export: the faults of materials that would otherwise stop the vertex
// passes or the writer later, at the first of them and without saying where, listed all at once
// and before anything is processed.

#include <string>
#include <string_view>
#include <vector>

#include "model/PropertiesSet.h"
#include "model/RootNode.h"

namespace model::utils {

// What is wrong with a material's own layout, or an empty text when nothing is:
// "Broken texture channels" when an entry of the texture channel table names a channel past
// TEXCOORD15 or one that the vertex format does not hold, else "Wrong vertex size." when the
// format has no POSITION0.
std::string_view materialLayoutFault(const PropertiesSet& material);

// One text for each fault, in the order of the render list:
// - a render node that draws something but has no material, or one that is not a PropertiesSet:
//   "Unknown properties set. Node: <name>.", the text with which saving would fail;
// - each material of a render node with a mesh (once, at its first user) whose layout is faulty:
//   the fault, then " Material: <name>.", the fault of materialLayoutFault with the material's
//   name ("Broken texture channels. Material: Hull." or "Wrong vertex size. Material: Hull.").
std::vector<std::string> checkMaterials(const RootNode& root);

}  // namespace model::utils
