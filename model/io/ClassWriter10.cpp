#include "model/io/ClassWriter10.h"

#include <algorithm>
#include <utility>

#include "model/Node.h"
#include "model/RootNode.h"
#include "model/io/FileSizeEstimate.h"

namespace model {

namespace {

constexpr std::uint32_t kNoParent = 0xFFFFFFFFu;

// The transform tree in pre-order, with the pre-order index of each node's parent. One walk over
// plain pointers gives the node indices, the order of the records and the parent table.
struct TreeOrder {
    std::vector<Node*> nodes;
    std::vector<std::uint32_t> parents;
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
        // Children go on the stack last first, so the first child is taken next.
        const std::size_t first = stack.size();
        for (Node* child = node->firstChild().get(); child; child = child->nextSibling().get()) {
            stack.emplace_back(child, index);
        }
        std::reverse(stack.begin() + static_cast<std::ptrdiff_t>(first), stack.end());
    }
    return order;
}

// Group names in file order; an empty group is left out altogether.
template <class List>
void writeGroup(MemBinaryFileW& file, NodeWriter10& writer, const char* name, const List& list) {
    if (list.empty()) {
        return;
    }
    file.writeString(name);
    file.writeU32(static_cast<std::uint32_t>(list.size()));
    for (const auto& node : list) {
        node->accept(writer);
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

void ClassWriter10::save(RootNode& root, std::vector<unsigned char>& out) {
    root.collectMaterials();
    const Ptr<Node>& tree = root.rootNode();
    nodeIndices_.clear();
    // A tree root that hangs under a node outside the tree has no index for its parent.
    const Ptr<Node>* outside = tree ? &tree->parent() : nullptr;
    const TreeOrder order =
        treeOrder(tree, outside && *outside ? nodeIndices_.at(outside->get()) : kNoParent);
    nodeIndices_.reserve(order.nodes.size());
    for (std::size_t i = 0; i < order.nodes.size(); ++i) {
        nodeIndices_.emplace(order.nodes[i], static_cast<std::uint32_t>(i));
    }
    file_.reserve(estimateFileSize(root, order.nodes));

    file_.write("NQF", 3);
    file_.writeU16(version());
    file_.writeU64(0);

    root.accept(nodeWriter_);
    file_.writeU32(static_cast<std::uint32_t>(order.nodes.size()));
    for (Node* node : order.nodes) {
        node->accept(nodeWriter_);
    }
    // The parent table in one block: on a little-endian host the array is already the file's bytes.
    file_.write(order.parents.data(), order.parents.size() * sizeof(std::uint32_t));

    std::uint32_t groupCount = (root.connectors().empty() ? 0 : 1) + (root.shellNodes().empty() ? 0 : 1) +
                               (root.lightNodes().empty() ? 0 : 1) + (root.renderNodes().empty() ? 0 : 1);
    file_.writeU32(groupCount);
    writeGroup(file_, nodeWriter_, "CONNECTORS", root.connectors());
    writeGroup(file_, nodeWriter_, "SHELL_NODES", root.shellNodes());
    writeGroup(file_, nodeWriter_, "LIGHT_NODES", root.lightNodes());
    writeGroup(file_, nodeWriter_, "RENDER_NODES", root.renderNodes());

    // The string table is complete only now. It belongs at offset 5, with its size in front, and
    // everything written from there on moves back to make room. The buffer was reserved with
    // room to spare, so this moves the bytes within it; the buffer then becomes the output.
    std::vector<unsigned char>& buffer = file_.buffer();
    const StringPool& strings = file_.strings();
    const auto tableSize = static_cast<std::uint32_t>(strings.tableSize());
    buffer.insert(buffer.begin() + 5, 4 + std::size_t{tableSize}, 0);
    for (int i = 0; i < 4; ++i) {
        buffer[5 + static_cast<std::size_t>(i)] = static_cast<unsigned char>(tableSize >> (8 * i));
    }
    strings.flattenInto(buffer.data() + 9);
    out = std::move(buffer);
    buffer.clear();
}

std::unique_ptr<IClassWriter> createClassWriter(std::uint16_t version) {
    if (version == 10) {
        return std::make_unique<ClassWriter10>();
    }
    return nullptr;
}

}  // namespace model
