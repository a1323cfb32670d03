#pragma once
// A generous guess at the size of a model's file, so the writer can reserve its buffer once
// instead of growing it (and copying everything written so far) several times on the way.

#include <cstdint>

namespace model {

class Node;
class RootNode;

struct FileEstimate {
    // Bytes the file of root will take at most in the common case: the mesh data counted
    // exactly, every record and string generously.
    std::uint64_t bytes = 0;
    // Distinct strings the file will hold about: a property name per property, a few dozen keys
    // and names per material.
    std::uint64_t strings = 0;
};

// Adds a node of the transform tree to the estimate; the writer calls it during its walk over
// the tree, while the node is in the cache.
void addTreeNode(FileEstimate& estimate, const Node& node);

// The estimate of the whole file, given that of its transform tree. A guess that falls short
// only costs a regrowth of the buffer or of the string index.
FileEstimate estimateFile(const RootNode& root, const FileEstimate& tree);

}  // namespace model
