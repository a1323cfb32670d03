#pragma once
// Small hand-built models that together hold every node class and every property class. Their
// files are kept in tests/golden/ and compared byte for byte.

#include <string>
#include <vector>

#include "model/RootNode.h"

namespace golden {

struct GoldenModel {
    std::string file;  // name in tests/golden/
    model::Ptr<model::RootNode> root;
};

// Every tree node class, and every property class on one node.
GoldenModel treeNodesModel();
// Every list node class, with materials, textures and both uniform kinds.
GoldenModel listNodesModel();

}  // namespace golden
