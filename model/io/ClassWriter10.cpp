#include "model/io/ClassWriter10.h"

#include "model/Node.h"
#include "model/RootNode.h"

namespace model {

namespace {

// Pre-order over the whole tree; an empty tree has no nodes.
template <class F>
void forEachTreeNode(const Ptr<Node>& tree, F&& f) {
    if (!tree) {
        return;
    }
    tree->visit([&](const Ptr<Node>& node) {
        f(node);
        return true;
    });
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
    forEachTreeNode(tree, [&](const Ptr<Node>& node) { indices.emplace(node.get(), next++); });
    return indices;
}

void ClassWriter10::saveTransformNodes(const Ptr<Node>& tree) {
    forEachTreeNode(tree, [&](const Ptr<Node>& node) { node->accept(nodeWriter_); });
}

void ClassWriter10::saveTransformNodesConnections(const Ptr<Node>& tree, const NodeIndexMap& nodeIndices,
                                                  io::IBinaryFileW& file) {
    forEachTreeNode(tree, [&](const Ptr<Node>& node) {
        const Ptr<Node>& parent = node->parent();
        file.writeU32(parent ? nodeIndices.at(parent.get()) : 0xFFFFFFFFu);
    });
}

void ClassWriter10::save(RootNode& root, std::vector<unsigned char>& out) {
    root.collectMaterials();
    nodeIndices_.clear();
    nodeIndices_ = calcNumTransformNodes(root.rootNode());

    file_.write("NQF", 3);
    file_.writeU16(version());
    file_.writeU64(0);

    root.accept(nodeWriter_);
    file_.writeU32(static_cast<std::uint32_t>(nodeIndices_.size()));
    saveTransformNodes(root.rootNode());
    saveTransformNodesConnections(root.rootNode(), nodeIndices_, file_);

    std::uint32_t groupCount = (root.connectors().empty() ? 0 : 1) + (root.shellNodes().empty() ? 0 : 1) +
                               (root.lightNodes().empty() ? 0 : 1) + (root.renderNodes().empty() ? 0 : 1);
    file_.writeU32(groupCount);
    writeGroup(file_, nodeWriter_, "CONNECTORS", root.connectors());
    writeGroup(file_, nodeWriter_, "SHELL_NODES", root.shellNodes());
    writeGroup(file_, nodeWriter_, "LIGHT_NODES", root.lightNodes());
    writeGroup(file_, nodeWriter_, "RENDER_NODES", root.renderNodes());

    // The string table is complete only now. It belongs at offset 5, in front of the reserved
    // word and everything behind it. Seeking back and writing there would insert it; assembling
    // the output around it gives the same bytes without moving the whole file once more.
    std::vector<char> table = file_.strings().flatten();
    const std::vector<unsigned char>& body = file_.buffer();
    const auto tableSize = static_cast<std::uint32_t>(table.size());
    const unsigned char head[4] = {
        static_cast<unsigned char>(tableSize), static_cast<unsigned char>(tableSize >> 8),
        static_cast<unsigned char>(tableSize >> 16), static_cast<unsigned char>(tableSize >> 24)};
    out.clear();
    out.reserve(body.size() + 4 + table.size());
    out.insert(out.end(), body.begin(), body.begin() + 5);
    out.insert(out.end(), head, head + 4);
    out.insert(out.end(), table.begin(), table.end());
    out.insert(out.end(), body.begin() + 5, body.end());
}

std::unique_ptr<IClassWriter> createClassWriter(std::uint16_t version) {
    if (version == 10) {
        return std::make_unique<ClassWriter10>();
    }
    return nullptr;
}

}  // namespace model
