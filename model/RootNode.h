#pragma once
// The model: a tree of transform-like nodes, four lists of the nodes that hang on it (connectors,
// render, shell and light nodes), the model's boxes, and the materials of the render nodes.

#include <array>
#include <cstdint>
#include <set>
#include <vector>

#include "model/BaseMaterial.h"
#include "model/BaseNode.h"
#include "model/BaseRenderNode.h"
#include "model/BaseShellNode.h"
#include "model/Box.h"
#include "model/Connector.h"
#include "model/LightNode.h"
#include "model/NodeClassMacros.h"

namespace model {

// A link of a user: which link, and whose.
struct NodeLink {
    std::uint32_t link = 0;
    Ptr<BaseNode> user;
};

// All argument numbers that the nodes of a tree use.
std::set<std::uint32_t> getArgumentsList(const Ptr<Node>& tree);

class RootNode : public BaseNode {
public:
    RootNode();
    // A copy has the root's own fields (name, properties, version, flags, boxes) but neither the
    // tree nor the lists: those belong to one model.
    RootNode(const RootNode& other);
    RootNode& operator=(const RootNode&) = delete;
    // Breaks the reference cycles of the tree, then lets go of it and of the lists.
    ~RootNode() override;

    MODEL_NODE_CLASS(RootNode)

    const Ptr<Node>& rootNode() const { return tree_; }
    void setRootNode(Ptr<Node> node) { tree_ = std::move(node); }

    // The lists. Adding sets the node's root; removing clears it, and fills the vacated place
    // with the last element, so the order is not kept.
    const std::vector<Ptr<Connector>>& connectors() const { return connectors_; }
    const std::vector<Ptr<BaseRenderNode>>& renderNodes() const { return renderNodes_; }
    const std::vector<Ptr<BaseShellNode>>& shellNodes() const { return shellNodes_; }
    const std::vector<Ptr<LightNode>>& lightNodes() const { return lightNodes_; }
    void addConnector(Ptr<Connector> node);
    void addRenderNode(Ptr<BaseRenderNode> node);
    void addShellNode(Ptr<BaseShellNode> node);
    void addLightNode(Ptr<LightNode> node);
    bool removeConnector(const Connector* node);
    bool removeRenderNode(const BaseRenderNode* node);
    bool removeShellNode(const BaseShellNode* node);
    bool removeLightNode(const LightNode* node);
    // Replaces a whole list, for passes that filter or rebuild one.
    void setRenderNodes(std::vector<Ptr<BaseRenderNode>> nodes);
    void setShellNodes(std::vector<Ptr<BaseShellNode>> nodes);

    // Connectors, then light nodes, then shell nodes, then render nodes.
    std::vector<Ptr<BaseNode>> allUsers() const;
    // Every (link number, user) whose link is node: users in allUsers() order, and within a user
    // by ascending link number.
    std::vector<NodeLink> linksOf(const Node* node) const;
    bool isLinked(const Node* node) const;
    // Sets every link equal to oldNode to newNode; true if any changed.
    bool replaceLinks(const Node* oldNode, const Ptr<Node>& newNode);

    // Rebuilds materials: each render node's material, in list order, once by pointer.
    void collectMaterials();
    // Position in materials, or -1.
    int materialIndex(const BaseMaterial* material) const;
    // True if the tree holds a bone.
    bool hasBones() const;
    // The highest argument number in use plus one, or 0 when no argument is in use.
    std::uint32_t calcNumHandles() const;

    // Writes the model to a path of the virtual file system in the given format version. Throws
    // nq::ExtException with "Unsupported version N" when there is no writer for the version, and
    // with "Can't write to file PATH" when the file system refuses. Defined with the writer.
    void save(const std::string& path, std::uint16_t version);

    std::array<std::uint8_t, 2> flags{};
    Box boundingBox;
    Box userBox;
    Box lightBox;
    std::vector<MaterialPtr> materials;

private:
    Ptr<Node> tree_;
    std::vector<Ptr<Connector>> connectors_;
    std::vector<Ptr<BaseRenderNode>> renderNodes_;
    std::vector<Ptr<BaseShellNode>> shellNodes_;
    std::vector<Ptr<LightNode>> lightNodes_;
};

}  // namespace model
