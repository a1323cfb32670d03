#pragma once
// What a finished model holds, as a small tree of named counts for the statistics dialog.

#include <string>
#include <vector>

#include "model/RootNode.h"

namespace model::utils {

struct ModelStatistics {
    std::string name;
    std::string value;
    std::vector<ModelStatistics> children;
};

// An entry with empty name and value whose children are, in this order: "nTransformNodes",
// "nRenderNodes" (with one child per render class and blending), "nFaces", "nMaterials",
// "nShellNodes", "nConnectors", "nLights", "nArguments".
ModelStatistics gatherStatistics(const RootNode& root);

}  // namespace model::utils
