#include <gtest/gtest.h>

#include "model/ArgAnimationNode.h"
#include "model/NodeCreators.h"
#include "model/PropertiesSet.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/ShellNode.h"
#include "model/utils/ModelStatistics.h"

namespace {

using namespace model;
using model::utils::gatherStatistics;
using model::utils::ModelStatistics;

MaterialPtr material(std::uint8_t blending) {
    auto* set = new PropertiesSet;
    set->blending = blending;
    return MaterialPtr(set);
}

Ptr<RenderNode> renderNode(RootNode& root, const MaterialPtr& m, std::size_t triangles) {
    Ptr<RenderNode> r = createNodeAs<RenderNode>("model::RenderNode");
    r->material = m;
    r->indices = Indices(kTriangleList, std::vector<std::uint32_t>(triangles * 3, 0));
    root.addRenderNode(r);
    return r;
}

using Entries = std::vector<std::pair<std::string, std::string>>;

// The name and value of each entry under the top, in order.
Entries entries(const ModelStatistics& s) {
    Entries out;
    for (const ModelStatistics& c : s.children) {
        out.emplace_back(c.name, c.value);
    }
    return out;
}

TEST(ModelStatistics, EmptyModelCountsZeroEverywhere) {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    ModelStatistics s = gatherStatistics(*root);
    EXPECT_EQ(s.name, "");
    EXPECT_EQ(s.value, "");
    EXPECT_EQ(entries(s), (Entries{{"nTransformNodes", "0"},
                                   {"nRenderNodes", "0"},
                                   {"nFaces", "0"},
                                   {"nMaterials", "0"},
                                   {"nShellNodes", "0"},
                                   {"nConnectors", "0"},
                                   {"nLights", "0"},
                                   {"nArguments", "0"}}));
    EXPECT_TRUE(s.children.at(1).children.empty());
}

TEST(ModelStatistics, CountsTheTreeTheListsAndTheArguments) {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    Ptr<Node> top = createNode("r");
    root->setRootNode(top);
    Ptr<Node> a = createNode("a");
    top->append(a);
    a->append(createNode("b"));
    auto anim = createNodeAs<ArgAnimationNode>("model::ArgAnimationNode");
    anim->positionChannels.push_back(PositionChannel{5, {}});
    a->append(anim);

    MaterialPtr shared = material(0);
    renderNode(*root, shared, 2);
    renderNode(*root, shared, 3);
    renderNode(*root, material(1), 1);
    root->addShellNode(createNodeAs<ShellNode>("model::ShellNode"));
    root->addConnector(createNodeAs<Connector>("model::Connector"));
    root->addConnector(createNodeAs<Connector>("model::Connector"));

    // The argument count is the highest argument plus one, not the number of arguments in use.
    EXPECT_EQ(entries(gatherStatistics(*root)), (Entries{{"nTransformNodes", "4"},
                                                         {"nRenderNodes", "3"},
                                                         {"nFaces", "6"},
                                                         {"nMaterials", "2"},
                                                         {"nShellNodes", "1"},
                                                         {"nConnectors", "2"},
                                                         {"nLights", "0"},
                                                         {"nArguments", "6"}}));
}

TEST(ModelStatistics, RenderNodesByClassAndBlending) {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    for (std::uint8_t blending : {2, 2, 3, 7}) {  // 7 has no word: counted in the total only
        renderNode(*root, material(blending), 1);
    }
    renderNode(*root, MaterialPtr(), 1);

    ModelStatistics s = gatherStatistics(*root);
    const ModelStatistics& render = s.children.at(1);
    EXPECT_EQ(render.value, "5");
    EXPECT_EQ(entries(render), (Entries{{"model::RenderNode(Alpha test)", "2"},
                                        {"model::RenderNode(Sum. transparent)", "1"}}));
}

}  // namespace
