#pragma once
// The readable summary of a read .nqf file: the tree with class and name, the groups with their
// nodes, the materials with their names and textures, and the counts.

#include <string>

#include "model/io/NqfDocument.h"

namespace model::io {

std::string summary(const NqfDocument& document);

}  // namespace model::io
