#include <gtest/gtest.h>

#include "model/utils/MaterialShells.h"
#include "model/utils/RenderNodePasses.h"
#include "utils/MergeTestSupport.h"

namespace {

using namespace model;
using namespace model::utils;
using namespace mergetest;

TEST(MaterialShells, RenderNodesThatNameAPhysicalMaterialBecomeShells) {
    Scene s = makeScene();
    MaterialRef m = makeMaterial("m");
    Ptr<Node> top = s.root->rootNode();
    Ptr<RenderNode> steel = makeTriangle(top, m, 0, "hull");
    steel->properties.push_back(createProperty<StringProperty>("material", "steel"));
    Ptr<RenderNode> numbered = makeTriangle(top, m, 0, "number");
    numbered->properties.push_back(createFloatProperty("material", 1.0f));  // not a name
    Ptr<RenderNode> twoParents = makeTriangle(top, m, 0, "two");
    twoParents->links.push_back(RenderLink{top});
    twoParents->properties = steel->properties;
    for (const Ptr<RenderNode>& n : {numbered, steel, twoParents}) {
        s.root->addRenderNode(n);
    }
    EXPECT_EQ(convertMaterialNodesToShells(*s.root), 1u);
    ASSERT_EQ(s.root->renderNodes().size(), 2u);
    EXPECT_EQ(s.root->renderNodes()[0].get(), numbered.get());
    EXPECT_EQ(s.root->renderNodes()[1].get(), twoParents.get());
    EXPECT_EQ(steel->root, nullptr);
    ASSERT_EQ(s.root->shellNodes().size(), 1u);
    const auto& shell = dynamic_cast<const ShellNode&>(*s.root->shellNodes()[0]);
    EXPECT_EQ(shell.name, "hull");
    EXPECT_EQ(shell.controlNode, top);
    EXPECT_EQ(shell.properties, steel->properties);
    EXPECT_EQ(shell.vertices.stride(), 3u);
    EXPECT_EQ(shell.vertices.attribute(POSITION0).data, (std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0}));
    EXPECT_EQ(shell.indices, steel->indices);
    EXPECT_EQ(shell.root, s.root.get());
}

// Two copies of a panel under one parent, one with a seam of near-equal vertices, one with an
// unused vertex and a second texture channel equal to the first: one node remains, with the
// vertices of both and the channels folded.
TEST(RenderNodePasses, RunInTheirOrderAndReportWhatTheyDid) {
    Scene s = makeScene();
    MaterialRef m = makeMaterial("panel");
    m->vertexFormat[TEXCOORD0] = 2;
    m->vertexFormat[TEXCOORD1] = 2;
    m->textureChannels[0] = 0;
    m->textureChannels[1] = 1;
    MaterialRef twin = copyMaterial(m);
    Ptr<Node> top = s.root->rootNode();
    for (const MaterialRef& material : {m, twin}) {
        Ptr<RenderNode> n = makeTriangle(top, material);
        n->vertices = meshVertices({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1e-6f, 0, 0}, {5, 5, 5}});
        std::vector<float> uv{0, 0, 1, 0, 0, 1, 0, 0, 3, 3};
        n->vertices.setAttribute(TEXCOORD0, 2, uv);
        n->vertices.setAttribute(TEXCOORD1, 2, uv);
        n->indices = Indices(kTriangleList, {0, 1, 2, 3, 2, 1});
        s.root->addRenderNode(n);
    }
    Ptr<ShellNode> shell = createNodeAs<ShellNode>("model::ShellNode");
    shell->controlNode = top;
    s.root->addShellNode(shell);

    RenderNodePassStats stats = runRenderNodePasses(*s.root);
    EXPECT_EQ(stats.channelsRemoved, 2u);  // one of each material
    EXPECT_EQ(stats.weldedVertices, 4u);   // per node one unused and one welded
    EXPECT_EQ(stats.extreme, (RemovedCounts{0, 0}));
    EXPECT_EQ(stats.shellsMade, 0u);
    EXPECT_EQ(stats.merge, MergeCounters{});
    EXPECT_EQ(stats.remap, (RemovedCounts{3, 0}));  // the second copy's vertices equal the first's
    ASSERT_EQ(s.root->renderNodes().size(), 1u);
    const auto& merged = dynamic_cast<const RenderNode&>(*s.root->renderNodes()[0]);
    EXPECT_EQ(merged.vertices.vertexCount(), 3u);
    EXPECT_EQ(merged.indices.indices, (std::vector<std::uint32_t>{0, 1, 2, 0, 2, 1, 0, 1, 2, 0, 2, 1}));
    EXPECT_TRUE(
        merged.vertices.matchesFormat(dynamic_cast<const PropertiesSet&>(*merged.material).vertexFormat));
    EXPECT_TRUE(s.root->shellNodes().empty());
}

}  // namespace
