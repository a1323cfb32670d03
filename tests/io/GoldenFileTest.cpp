#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>

#include "io/GoldenModels.h"
#include "model/Node.h"
#include "model/NodeType.h"
#include "model/io/ClassWriter10.h"
#include "model/io/NqfReader.h"

namespace {

using golden::GoldenModel;

std::vector<unsigned char> bytesOf(model::RootNode& root) {
    std::vector<unsigned char> out;
    model::createClassWriter(10)->save(root, out);
    return out;
}

std::filesystem::path goldenPath(const std::string& file) {
    return std::filesystem::path(NQ_SOURCE_DIR) / "tests" / "golden" / file;
}

std::vector<unsigned char> readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<GoldenModel> allModels() {
    return {golden::treeNodesModel(), golden::listNodesModel()};
}

// Rebuilding each model gives its stored file byte for byte. NQ_UPDATE_GOLDEN=1 rewrites them
// after a deliberate format change.
TEST(GoldenFiles, RebuiltModelsMatchTheStoredBytes) {
    for (GoldenModel& m : allModels()) {
        std::vector<unsigned char> bytes = bytesOf(*m.root);
        if (std::getenv("NQ_UPDATE_GOLDEN")) {
            std::ofstream(goldenPath(m.file), std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()),
                       static_cast<std::streamsize>(bytes.size()));
        }
        EXPECT_EQ(bytes, readFile(goldenPath(m.file))) << m.file;
    }
}

// The reader gives back the tree, the lists and the values the models were built with.
TEST(GoldenFiles, ReaderReturnsTheBuiltModel) {
    std::set<std::string> classes;
    std::set<std::string> propertyClasses;
    for (GoldenModel& m : allModels()) {
        SCOPED_TRACE(m.file);
        model::io::NqfDocument doc = model::io::readNqf(readFile(goldenPath(m.file)));
        EXPECT_EQ(doc.root.head.name, m.root->name);
        EXPECT_EQ(doc.root.head.version, 3u);
        EXPECT_EQ(doc.root.numHandles, m.root->calcNumHandles());
        m.root->collectMaterials();
        ASSERT_EQ(doc.root.materials.size(), m.root->materials.size());

        // Tree: classes, names and parents in pre-order.
        std::vector<model::Node*> order;
        m.root->rootNode()->visit([&](const model::Ptr<model::Node>& n) {
            order.push_back(n.get());
            return true;
        });
        ASSERT_EQ(doc.tree.size(), order.size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            EXPECT_EQ(doc.tree[i].head.className, model::nodeTypeName(order[i]->fileNodeType()));
            EXPECT_EQ(doc.tree[i].head.name, order[i]->name);
            EXPECT_EQ(doc.tree[i].head.properties.size(), order[i]->properties.size());
            std::uint32_t parent = 0xFFFFFFFFu;
            for (std::size_t p = 0; p < order.size(); ++p) {
                if (order[p] == order[i]->parent().get()) {
                    parent = static_cast<std::uint32_t>(p);
                }
            }
            EXPECT_EQ(doc.parents[i], parent);
            classes.insert(doc.tree[i].head.className);
            for (const auto& prop : doc.tree[i].head.properties) {
                propertyClasses.insert(prop.className);
            }
        }

        // Groups in file order, nodes in list order.
        std::vector<std::pair<std::string, std::vector<model::BaseNode*>>> lists = {
            {"CONNECTORS", {}}, {"SHELL_NODES", {}}, {"LIGHT_NODES", {}}, {"RENDER_NODES", {}}};
        for (auto& c : m.root->connectors())
            lists[0].second.push_back(c.get());
        for (auto& s : m.root->shellNodes())
            lists[1].second.push_back(s.get());
        for (auto& l : m.root->lightNodes())
            lists[2].second.push_back(l.get());
        for (auto& r : m.root->renderNodes())
            lists[3].second.push_back(r.get());
        std::size_t g = 0;
        for (auto& [name, nodes] : lists) {
            if (nodes.empty()) {
                continue;
            }
            ASSERT_LT(g, doc.groups.size());
            EXPECT_EQ(doc.groups[g].name, name);
            ASSERT_EQ(doc.groups[g].nodes.size(), nodes.size());
            for (std::size_t i = 0; i < nodes.size(); ++i) {
                EXPECT_EQ(doc.groups[g].nodes[i].head.className, model::nodeTypeName(nodes[i]->nodeType()));
                EXPECT_EQ(doc.groups[g].nodes[i].head.name, nodes[i]->name);
                EXPECT_EQ(doc.groups[g].nodes[i].head.version, nodes[i]->version);
                classes.insert(doc.groups[g].nodes[i].head.className);
            }
            ++g;
        }
        EXPECT_EQ(g, doc.groups.size());
        for (const auto& material : doc.root.materials) {
            for (const auto& u : material.uniforms)
                propertyClasses.insert(u.className);
            for (const auto& u : material.animatedUniforms)
                propertyClasses.insert(u.className);
        }
    }

    // Together the files hold every node class that has a class, and every property class.
    for (std::uint32_t id = 0; id <= 26; ++id) {
        if (id == 14 || id == 16) {
            continue;  // no class; the root record is checked above
        }
        EXPECT_TRUE(classes.count(model::nodeTypeName(id))) << model::nodeTypeName(id);
    }
    EXPECT_EQ(propertyClasses.size(), 11u);
}

// Values survive the trip: a few fields of each kind checked against what was built.
TEST(GoldenFiles, ValuesSurviveTheRoundTrip) {
    GoldenModel tree = golden::treeNodesModel();
    model::io::NqfDocument doc = model::io::readNqf(bytesOf(*tree.root));
    const auto& top = doc.tree[0].head;
    ASSERT_EQ(top.properties.size(), 11u);
    EXPECT_EQ(top.properties[0].floats, std::vector<float>{1.5f});
    EXPECT_EQ(top.properties[1].uintValue, 7u);
    EXPECT_EQ(top.properties[5].text, "text \xC3\xA4");
    EXPECT_EQ(top.properties[6].argument, 9u);
    ASSERT_EQ(top.properties[7].keys.size(), 2u);
    EXPECT_EQ(top.properties[7].keys[1].time, 1.0);
    EXPECT_EQ(top.properties[10].keys[0].value, (std::vector<float>{1, 2, 3, 4}));
    const auto& xf = std::get<model::io::NqfTransformBody>(doc.tree[1].body);
    EXPECT_EQ(xf.matrix[12], 1.0);
    EXPECT_EQ(xf.matrix[14], 3.0);

    GoldenModel lists = golden::listNodesModel();
    model::io::NqfDocument ldoc = model::io::readNqf(bytesOf(*lists.root));
    const auto& rich = ldoc.root.materials.at(1);
    EXPECT_EQ(rich.name, "rich");
    ASSERT_EQ(rich.textures.size(), 2u);
    EXPECT_EQ(rich.textures[0].name, "diffuse.dds");
    EXPECT_EQ(rich.decal, 3);
    EXPECT_TRUE(rich.hasBillboard);
    EXPECT_EQ(rich.animatedUniforms.size(), 1u);
    const auto& render = std::get<model::io::NqfRenderBody>(ldoc.groups.back().nodes[0].body);
    EXPECT_EQ(render.indices.width, 1) << "300 vertices need two-byte indices";
    EXPECT_EQ(render.vertices.count, 300u);
    EXPECT_EQ(render.vertices.floatsPerVertex, 6u);
    EXPECT_EQ(ldoc.root.boundingBox.max, (model::io::Vec3f{1, 2, 3}));
}

}  // namespace
