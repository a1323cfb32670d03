#pragma once
// A generous guess at the size of a model's file, so the writer can reserve its buffer once
// instead of growing it (and copying everything written so far) several times on the way.

#include <cstdint>
#include <vector>

namespace model {

class Node;
class RootNode;

// Bytes the file of root will take at most in the common case: the mesh data counted exactly,
// every record and string generously. `treeNodes` are the nodes of the transform tree. A guess
// that falls short only costs a regrowth.
std::uint64_t estimateFileSize(const RootNode& root, const std::vector<Node*>& treeNodes);

}  // namespace model
