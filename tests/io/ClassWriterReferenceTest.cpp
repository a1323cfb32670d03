// The writer assembles its output in one pass with the string table put in at the end. These
// tests compare it with the plain procedure it stands for: every record written through the
// inserting sink, then the table inserted at offset 5 by seeking back and writing.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "io/GoldenModels.h"
#include "model/ArgAnimationNode.h"
#include "model/NodeCreators.h"
#include "model/PropertiesSet.h"
#include "model/PropertyCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/TransformNode.h"
#include "model/io/ClassWriter10.h"
#include "model/io/MemBinaryFileW.h"
#include "model/io/NodeWriter10.h"

namespace {

using namespace model;

template <class List>
void writeGroup(MemBinaryFileW& file, NodeWriter10& writer, const char* name, const List& list) {
    if (!list.empty()) {
        file.writeString(name);
        file.writeU32(static_cast<std::uint32_t>(list.size()));
        for (const auto& node : list) {
            node->accept(writer);
        }
    }
}

std::vector<unsigned char> saveStepByStep(RootNode& root) {
    root.collectMaterials();
    const NodeIndexMap indices = calcNumTransformNodes(root.rootNode());
    MemBinaryFileW file;
    NodeWriter10 writer(file, indices);
    file.write("NQF", 3);
    file.writeU16(10);
    file.writeU64(0);
    root.accept(writer);
    file.writeU32(static_cast<std::uint32_t>(indices.size()));
    root.rootNode()->visit([&](const Ptr<Node>& node) {
        node->accept(writer);
        return true;
    });
    root.rootNode()->visit([&](const Ptr<Node>& node) {
        file.writeU32(node->parent() ? indices.at(node->parent().get()) : 0xFFFFFFFFu);
        return true;
    });
    file.writeU32((root.connectors().empty() ? 0u : 1u) + (root.shellNodes().empty() ? 0u : 1u) +
                  (root.lightNodes().empty() ? 0u : 1u) + (root.renderNodes().empty() ? 0u : 1u));
    writeGroup(file, writer, "CONNECTORS", root.connectors());
    writeGroup(file, writer, "SHELL_NODES", root.shellNodes());
    writeGroup(file, writer, "LIGHT_NODES", root.lightNodes());
    writeGroup(file, writer, "RENDER_NODES", root.renderNodes());
    file.seek(5);
    const std::vector<char> table = file.strings().flatten();
    file.writeU32(static_cast<std::uint32_t>(table.size()));
    file.write(table.data(), table.size());
    return {file.buffer().begin(), file.buffer().end()};
}

std::vector<unsigned char> save(RootNode& root) {
    std::vector<unsigned char> out;
    createClassWriter(10)->save(root, out);
    // The pieces a file is written from must join to the same bytes.
    std::unique_ptr<IClassWriter> writer = createClassWriter(10);
    std::vector<unsigned char> joined;
    for (std::span<const unsigned char> piece : writer->savePieces(root).pieces) {
        joined.insert(joined.end(), piece.begin(), piece.end());
    }
    EXPECT_EQ(joined, out);
    return out;
}

// A model that strains what the one-pass assembly relies on: thousands of distinct strings (the
// pool's index grows many times), a deep chain and wide fans in the tree, animation keys far
// beyond the size estimate, and meshes of several attributes longer than the interleaving chunk.
Ptr<RootNode> strainingModel(std::mt19937& rng) {
    auto pick = [&](int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng); };
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    root->name = "strain";
    std::vector<Ptr<Node>> nodes;
    const int count = 300 + pick(700);
    for (int i = 0; i < count; ++i) {
        Ptr<Node> node;
        if (pick(4) == 0) {
            auto animated = createNodeAs<ArgAnimationNode>("model::ArgAnimationNode");
            PositionChannel channel{static_cast<std::uint32_t>(pick(50)), {}};
            channel.keys.resize(static_cast<std::size_t>(pick(200)));
            for (std::size_t k = 0; k < channel.keys.size(); ++k) {
                channel.keys[k] = PositionKey{double(k), nq::Vec3d{{double(i), double(k), 1}}};
            }
            animated->positionChannels.push_back(std::move(channel));
            node = animated;
        } else if (pick(3) == 0) {
            node = createNodeAs<TransformNode>("model::TransformNode");
        } else {
            node = createNodeAs<Node>("model::Node");
        }
        node->name = "n" + std::to_string(i);
        for (int p = pick(4); p > 0; --p) {
            node->properties.push_back(createFloatProperty("prop" + std::to_string(pick(3000)), float(p)));
        }
        if (i == 0) {
            root->setRootNode(node);
        } else {
            // Mostly under the last node (a deep chain), sometimes under an early one (a fan).
            nodes[pick(3) == 0 ? static_cast<std::size_t>(pick(std::min(i, 5))) : nodes.size() - 1]->insert(
                nullptr, node);
        }
        nodes.push_back(node);
    }
    auto material = MaterialPtr(new PropertiesSet());
    for (int r = 1 + pick(3); r > 0; --r) {
        auto render = createNodeAs<RenderNode>("model::RenderNode");
        render->name = "mesh" + std::to_string(r);
        render->links.push_back(RenderLink{nodes[static_cast<std::size_t>(pick(count))], 0xFFFFFFFFu});
        if (pick(2) == 0) {
            // Several links, one of them to a node another render node links to as well.
            render->links.push_back(RenderLink{nodes[static_cast<std::size_t>(pick(count))], 7});
            render->links.push_back(RenderLink{nodes.front(), 0xFFFFFFFFu});
        }
        render->material = material;
        const std::size_t vertices = 600 + static_cast<std::size_t>(pick(2000));
        for (auto [semantic, size] :
             {std::pair{POSITION0, 3}, std::pair{NORMAL0, 3}, std::pair{TEXCOORD0, 2}}) {
            std::vector<float> data(vertices * static_cast<std::size_t>(size));
            for (float& x : data) {
                x = float(pick(1000));
            }
            render->vertices.setAttribute(semantic, size, std::move(data));
        }
        root->addRenderNode(render);
    }
    return root;
}

TEST(ClassWriterReference, OnePassAssemblyGivesTheBytesOfTheStepByStepProcedure) {
    for (auto make : {golden::treeNodesModel, golden::listNodesModel}) {
        golden::GoldenModel model = make();
        ASSERT_EQ(save(*model.root), saveStepByStep(*model.root)) << model.file;
    }
    std::mt19937 rng(11);
    for (int round = 0; round < 20; ++round) {
        Ptr<RootNode> root = strainingModel(rng);
        ASSERT_EQ(save(*root), saveStepByStep(*root)) << "round " << round;
    }
}

// Meshes of one attribute and 32-bit index lists large enough to be written as pieces of their own,
// pointing at the model's arrays, among records copied into the writer's buffer.
TEST(ClassWriterReference, LargeMeshBlocksArePiecesOfTheirOwnAndTheBytesStay) {
    std::mt19937 rng(23);
    Ptr<RootNode> root = strainingModel(rng);
    std::vector<const void*> blocks;
    for (int r = 0; r < 3; ++r) {
        auto render = createNodeAs<RenderNode>("model::RenderNode");
        render->name = "large" + std::to_string(r);
        render->links.push_back(RenderLink{root->rootNode(), 0xFFFFFFFFu});
        render->material = root->renderNodes().front()->material;
        std::vector<float> positions(3 * (6000 + 1000 * static_cast<std::size_t>(r)));
        for (std::size_t i = 0; i < positions.size(); ++i) {
            positions[i] = float(i % 977);
        }
        render->vertices.setAttribute(POSITION0, 3, std::move(positions));
        render->indices.primitive = kTriangleList;
        for (std::uint32_t i = 0; i < 30000; ++i) {
            render->indices.indices.push_back(i % 6000 + (r == 1 ? 70000 : 0));
        }
        blocks.push_back(render->vertices.attribute(POSITION0).data.data());
        if (r == 1) {
            blocks.push_back(render->indices.indices.data());
        }
        root->addRenderNode(render);
    }
    const std::vector<unsigned char> bytes = save(*root);
    ASSERT_EQ(bytes, saveStepByStep(*root));

    std::unique_ptr<IClassWriter> writer = createClassWriter(10);
    const FilePieces file = writer->savePieces(*root);
    for (const void* block : blocks) {
        EXPECT_EQ(std::count_if(file.pieces.begin(), file.pieces.end(),
                                [&](std::span<const unsigned char> piece) { return piece.data() == block; }),
                  1);
    }
}

}  // namespace
