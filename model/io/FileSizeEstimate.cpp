#include "model/io/FileSizeEstimate.h"

#include "model/BaseMeshRenderNode.h"
#include "model/Connector.h"
#include "model/FakeSpotLights3Node.h"
#include "model/LightNode.h"
#include "model/Node.h"
#include "model/RootNode.h"
#include "model/ShellNode.h"

namespace model {

namespace {

// A record head with its class name, name, reserved word and properties, plus room for a
// node's fixed fields (matrices, boxes) and its share of the string table.
constexpr std::uint64_t kRecordBytes = 384;
constexpr std::uint64_t kPropertyBytes = 64;
// The keys of a material record, its names, texture names and uniform names.
constexpr std::uint64_t kMaterialStrings = 64;

std::uint64_t vertexBytes(const Vertices& vertices) {
    std::uint64_t floats = 0;
    for (const auto& [semantic, attr] : vertices.attributes) {
        floats += attr.data.size();
    }
    return 8 + 4 * floats;
}

std::uint64_t recordBytes(const std::string& name, const PropertyList& properties) {
    return kRecordBytes + 2 * name.size() + kPropertyBytes * properties.size();
}

std::uint64_t listNodeBytes(const BaseNode& node) {
    std::uint64_t bytes = recordBytes(node.name, node.properties);
    if (const auto* mesh = dynamic_cast<const BaseMeshRenderNode*>(&node)) {
        bytes += vertexBytes(mesh->vertices) + 12 + 4 * mesh->indices.indices.size();
    } else if (const auto* shell = dynamic_cast<const ShellNode*>(&node)) {
        bytes += vertexBytes(shell->vertices) + 12 + 4 * shell->indices.indices.size();
    } else if (const auto* lights = dynamic_cast<const FakeSpotLights3Node*>(&node)) {
        bytes += vertexBytes(lights->lightData);
    }
    return bytes;
}

template <class List>
std::uint64_t listProperties(const List& list) {
    std::uint64_t count = 0;
    for (const auto& node : list) {
        count += node->properties.size();
    }
    return count;
}

template <class List>
std::uint64_t listBytes(const List& list) {
    std::uint64_t bytes = 0;
    for (const auto& node : list) {
        bytes += listNodeBytes(*node);
    }
    return bytes;
}

}  // namespace

void addTreeNode(FileEstimate& estimate, const Node& node) {
    estimate.bytes += recordBytes(node.name, node.properties) + 4;
    estimate.strings += node.properties.size();
}

FileEstimate estimateFile(const RootNode& root, const FileEstimate& tree) {
    // The head, the root record with its boxes, and the materials' records and keys.
    FileEstimate estimate = tree;
    estimate.bytes += 4096 + recordBytes(root.name, root.properties) + 2048 * root.materials.size();
    estimate.strings += 64 + root.properties.size() + kMaterialStrings * root.materials.size();
    estimate.bytes += listBytes(root.connectors()) + listBytes(root.shellNodes()) +
                      listBytes(root.lightNodes()) + listBytes(root.renderNodes());
    estimate.strings += listProperties(root.connectors()) + listProperties(root.shellNodes()) +
                        listProperties(root.lightNodes()) + listProperties(root.renderNodes());
    return estimate;
}

}  // namespace model
