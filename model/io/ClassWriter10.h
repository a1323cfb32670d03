#pragma once
// Turns a finished model into the bytes of one file. ClassWriter10 is the one writer; a version
// without a writer has none, and createClassWriter is the one place that knows the versions.

#include <cstdint>
#include <memory>
#include <vector>

#include "model/IObject.h"
#include "model/io/MemBinaryFileW.h"
#include "model/io/NodeWriter10.h"

namespace model {

class RootNode;

class IClassWriter {
public:
    virtual ~IClassWriter() = default;
    // Writes the whole file of root into out.
    virtual void save(RootNode& root, std::vector<unsigned char>& out) = 0;
    virtual std::uint16_t version() const = 0;
};

class ClassWriter10 : public IClassWriter {
public:
    ClassWriter10() : nodeWriter_(file_, nodeIndices_) {}
    void save(RootNode& root, std::vector<unsigned char>& out) override;
    std::uint16_t version() const override { return 10; }

    void saveTransformNodes(const Ptr<Node>& tree);
    static void saveTransformNodesConnections(const Ptr<Node>& tree, const NodeIndexMap& nodeIndices,
                                              io::IBinaryFileW& file);

private:
    NodeIndexMap nodeIndices_;
    MemBinaryFileW file_;
    NodeWriter10 nodeWriter_;
};

// A writer for the version, or null when there is none.
std::unique_ptr<IClassWriter> createClassWriter(std::uint16_t version);

// Each node of the tree with its pre-order index from 0; children are always entered.
NodeIndexMap calcNumTransformNodes(const Ptr<Node>& tree);

}  // namespace model
