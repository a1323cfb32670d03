#include "model/io/ClassWriter10.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "core/ExtException.h"
#include "model/Node.h"
#include "model/RootNode.h"
#include "model/io/FileSizeEstimate.h"
#include "model/io/HugePages.h"
#include "model/io/TreeNodeIndex.h"

namespace model {

namespace {

constexpr std::uint32_t kNoParent = 0xFFFFFFFFu;

// The transform tree in pre-order, with the pre-order index of each node's parent. One walk over
// plain pointers gives the node indices, the order of the records and the parent table.
struct TreeOrder {
    std::vector<Node*> nodes;
    std::vector<std::uint32_t> parents;
    // The tree's share of the file, counted while each node is at hand.
    FileEstimate estimate;
};

TreeOrder treeOrder(const Ptr<Node>& tree, std::uint32_t topParent) {
    TreeOrder order;
    if (!tree) {
        return order;
    }
    std::vector<std::pair<Node*, std::uint32_t>> stack{{tree.get(), topParent}};
    while (!stack.empty()) {
        const auto [node, parent] = stack.back();
        stack.pop_back();
        const auto index = static_cast<std::uint32_t>(order.nodes.size());
        order.nodes.push_back(node);
        order.parents.push_back(parent);
        addTreeNode(order.estimate, *node);
        // Children go on the stack last first, so the first child is taken next.
        const std::size_t first = stack.size();
        for (Node* child = node->firstChild().get(); child; child = child->nextSibling().get()) {
            stack.emplace_back(child, index);
        }
        std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(first), stack.end());
    }
    return order;
}

// Group names in file order; an empty group is left out altogether. Each node's arguments go to
// `noteArgument` as its record is written.
template <class List>
void writeGroup(MemBinaryFileW& file, NodeWriter10& writer, const char* name, const List& list,
                const std::function<void(std::uint32_t)>& noteArgument) {
    if (list.empty()) {
        return;
    }
    file.writeString(name);
    file.writeU32(static_cast<std::uint32_t>(list.size()));
    for (const auto& node : list) {
        node->accept(writer);
        node->forEachArgument(noteArgument);
    }
}

// How many records ahead the nodes' data is fetched into the cache.
constexpr std::size_t kRecordsAhead = 8;

void prefetchObject(const void* object, std::size_t size) {
    const auto* bytes = static_cast<const char*>(object);
    for (std::size_t at = 0; at < size; at += 64) {
        __builtin_prefetch(bytes + at);
    }
}

}  // namespace

NodeIndexMap calcNumTransformNodes(const Ptr<Node>& tree) {
    NodeIndexMap indices;
    std::uint32_t next = 0;
    for (Node* node : treeOrder(tree, kNoParent).nodes) {
        indices.emplace(node, next++);
    }
    return indices;
}

void ClassWriter10::saveTransformNodes(const Ptr<Node>& tree) {
    for (Node* node : treeOrder(tree, kNoParent).nodes) {
        node->accept(nodeWriter_);
    }
}

void ClassWriter10::saveTransformNodesConnections(const Ptr<Node>& tree, const NodeIndexMap& nodeIndices,
                                                  io::IBinaryFileW& file) {
    for (Node* node : treeOrder(tree, kNoParent).nodes) {
        const Ptr<Node>& parent = node->parent();
        file.writeU32(parent ? nodeIndices.at(parent.get()) : kNoParent);
    }
}

void ClassWriter10::writeRecords(RootNode& root) {
    root.collectMaterials();
    const Ptr<Node>& tree = root.rootNode();
    nodeIndices_.clear();
    if (tree && tree->parent()) {
        // A tree root that hangs under a node outside the tree has no index for its parent.
        throw nq::ExtException("invalid unordered_map<K, T> key");
    }
    const TreeOrder order = treeOrder(tree, kNoParent);

    // Only the tree nodes that the lists link to are ever looked up by index.
    TreeNodeIndex index(order.nodes);
    auto expectLinks = [&](const auto& list) {
        for (const auto& node : list) {
            for (std::uint32_t i = 0, n = node->linkCount(); i < n; ++i) {
                index.expect(node->link(i).get());
            }
        }
    };
    expectLinks(root.connectors());
    expectLinks(root.shellNodes());
    expectLinks(root.lightNodes());
    expectLinks(root.renderNodes());
    index.fill();
    NodeWriter10 writer(file_, index);
    writer.countHandlesLater();

    const FileEstimate estimate = estimateFile(root, order.estimate);
    file_.reserve(estimate.bytes);
    file_.strings().reserve(estimate.strings);
    file_.deferStringLookups();

    file_.write("NQF", 3);
    file_.writeU16(version());
    file_.writeU64(0);

    root.accept(writer);
    // The handle count closes the root record; it is counted below, while each node's data is
    // in the cache for its record anyway, and written over the placeholder at the end.
    const std::uint64_t handleCountAt = file_.tell() - 4;
    bool anyArgument = false;
    std::uint32_t highest = 0;
    const std::function<void(std::uint32_t)> noteArgument = [&](std::uint32_t argument) {
        highest = anyArgument && highest > argument ? highest : argument;
        anyArgument = true;
    };

    file_.writeU32(static_cast<std::uint32_t>(order.nodes.size()));
    // The nodes of a large tree lie scattered in memory and a record waits for each: the nodes a
    // few records ahead are fetched first, and their properties once the nodes have arrived.
    const std::size_t nodeCount = order.nodes.size();
    for (std::size_t i = 0; i < nodeCount; ++i) {
        if (i + 2 * kRecordsAhead < nodeCount) {
            prefetchObject(order.nodes[i + 2 * kRecordsAhead], sizeof(Node));
        }
        if (i + kRecordsAhead < nodeCount) {
            for (const Ptr<IProperty>& property : order.nodes[i + kRecordsAhead]->properties) {
                prefetchObject(property.get(), 64);
            }
        }
        Node* node = order.nodes[i];
        node->accept(writer);
        node->forEachArgument(noteArgument);
    }
    // The parent table in one block: on a little-endian host the array is already the file's bytes.
    file_.write(order.parents.data(), order.parents.size() * sizeof(std::uint32_t));

    std::uint32_t groupCount = (root.connectors().empty() ? 0 : 1) + (root.shellNodes().empty() ? 0 : 1) +
                               (root.lightNodes().empty() ? 0 : 1) + (root.renderNodes().empty() ? 0 : 1);
    file_.writeU32(groupCount);
    writeGroup(file_, writer, "CONNECTORS", root.connectors(), noteArgument);
    writeGroup(file_, writer, "SHELL_NODES", root.shellNodes(), noteArgument);
    writeGroup(file_, writer, "LIGHT_NODES", root.lightNodes(), noteArgument);
    writeGroup(file_, writer, "RENDER_NODES", root.renderNodes(), noteArgument);

    file_.resolveStrings();
    file_.patchU32(handleCountAt, anyArgument ? highest + 1 : 0);
}

void ClassWriter10::save(RootNode& root, std::vector<unsigned char>& out) {
    const FilePieces file = savePieces(root);
    std::size_t total = 0;
    for (std::span<const unsigned char> piece : file.pieces) {
        total += piece.size();
    }
    out.clear();
    out.reserve(total);
    adviseHugePages(out.data(), out.capacity());
    for (std::span<const unsigned char> piece : file.pieces) {
        out.insert(out.end(), piece.begin(), piece.end());
    }
}

FilePieces ClassWriter10::savePieces(RootNode& root) {
    writeRecords(root);
    // The string table belongs at offset 5, with its size in front: the head is made apart, and
    // everything written from there on follows it as it stands.
    const std::span<const unsigned char> buffer = file_.buffer();
    const StringPool& strings = file_.strings();
    const auto tableSize = static_cast<std::uint32_t>(strings.tableSize());
    FilePieces file;
    file.owned.resize(9 + std::size_t{tableSize});
    std::copy(buffer.begin(), buffer.begin() + 5, file.owned.begin());
    io::storeU32(file.owned.data() + 5, tableSize);
    strings.flattenInto(file.owned.data() + 9);
    file.pieces = file_.pieces(5);
    file.pieces.insert(file.pieces.begin(), file.owned);
    return file;
}

FilePieces IClassWriter::savePieces(RootNode& root) {
    FilePieces file;
    save(root, file.owned);
    file.pieces = {file.owned};
    return file;
}

std::unique_ptr<IClassWriter> createClassWriter(std::uint16_t version) {
    if (version == 10) {
        return std::make_unique<ClassWriter10>();
    }
    return nullptr;
}

}  // namespace model
