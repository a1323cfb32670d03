#pragma once
// Turns a finished model into the bytes of one file. ClassWriter10 is the one writer; a version
// without a writer has none, and createClassWriter is the one place that knows the versions.

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "model/IObject.h"
#include "model/io/MemBinaryFileW.h"
#include "model/io/NodeWriter10.h"

namespace model {

class RootNode;

// A file as pieces of bytes to be written one after the other. A piece points into `owned`, into
// the writer that made it, or into a large array of the model (a mesh's vertex or index block), and
// stays valid while all three live and the model is not changed.
struct FilePieces {
    std::vector<unsigned char> owned;
    std::vector<std::span<const unsigned char>> pieces;
};

class IClassWriter {
public:
    virtual ~IClassWriter() = default;
    // Writes the whole file of root into out.
    virtual void save(RootNode& root, std::vector<unsigned char>& out) = 0;
    virtual std::uint16_t version() const = 0;
    // The file of root as pieces, so that a large file need not be joined in memory before it is
    // written. By default the whole file is one piece.
    virtual FilePieces savePieces(RootNode& root);
};

class ClassWriter10 : public IClassWriter {
public:
    ClassWriter10() : nodeWriter_(file_, nodeIndices_) {}
    void save(RootNode& root, std::vector<unsigned char>& out) override;
    std::uint16_t version() const override { return 10; }
    // The head with the string table, then everything behind it as it stands in the writer's
    // buffer, which is never moved to make room for the table, with the model's large mesh blocks
    // as pieces of their own between its stretches.
    FilePieces savePieces(RootNode& root) override;

    void saveTransformNodes(const Ptr<Node>& tree);
    static void saveTransformNodesConnections(const Ptr<Node>& tree, const NodeIndexMap& nodeIndices,
                                              io::IBinaryFileW& file);

private:
    // Writes every record into the buffer, with nothing yet between the version and the
    // reserved word: the string table is complete only at the end.
    void writeRecords(RootNode& root);

    NodeIndexMap nodeIndices_;
    MemBinaryFileW file_;
    NodeWriter10 nodeWriter_;
};

// A writer for the version, or null when there is none.
std::unique_ptr<IClassWriter> createClassWriter(std::uint16_t version);

// Each node of the tree with its pre-order index from 0; children are always entered.
NodeIndexMap calcNumTransformNodes(const Ptr<Node>& tree);

}  // namespace model
