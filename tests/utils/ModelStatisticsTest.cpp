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

const ModelStatistics& entry(const ModelStatistics& s, const std::string& name) {
    for (const ModelStatistics& c : s.children) {
        if (c.name == name) {
            return c;
        }
    }
    static const ModelStatistics kMissing{"missing", "", {}};
    ADD_FAILURE() << "no entry " << name;
    return kMissing;
}

TEST(ModelStatistics, EmptyModelCountsZeroEverywhere) {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    ModelStatistics s = gatherStatistics(*root);
    EXPECT_EQ(s.name, "");
    EXPECT_EQ(s.value, "");
    std::vector<std::string> names;
    for (const ModelStatistics& c : s.children) {
        names.push_back(c.name);
        EXPECT_EQ(c.value, "0") << c.name;
    }
    EXPECT_EQ(names, (std::vector<std::string>{"nTransformNodes", "nRenderNodes", "nFaces", "nMaterials",
                                               "nShellNodes", "nConnectors", "nLights", "nArguments"}));
    EXPECT_TRUE(entry(s, "nRenderNodes").children.empty());
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

    ModelStatistics s = gatherStatistics(*root);
    EXPECT_EQ(entry(s, "nTransformNodes").value, "4");
    EXPECT_EQ(entry(s, "nRenderNodes").value, "3");
    EXPECT_EQ(entry(s, "nFaces").value, "6");
    EXPECT_EQ(entry(s, "nMaterials").value, "2");
    EXPECT_EQ(entry(s, "nShellNodes").value, "1");
    EXPECT_EQ(entry(s, "nConnectors").value, "2");
    EXPECT_EQ(entry(s, "nLights").value, "0");
    // The highest argument plus one, not the number of arguments in use.
    EXPECT_EQ(entry(s, "nArguments").value, "6");
}

TEST(ModelStatistics, RenderNodesByClassAndBlending) {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    renderNode(*root, material(2), 1);
    renderNode(*root, material(2), 1);
    renderNode(*root, material(3), 1);
    renderNode(*root, material(7), 1);  // no word for this mode: counted in the total only
    renderNode(*root, MaterialPtr(), 1);

    ModelStatistics s = gatherStatistics(*root);
    const ModelStatistics& render = entry(s, "nRenderNodes");
    EXPECT_EQ(render.value, "5");
    ASSERT_EQ(render.children.size(), 2u);
    EXPECT_EQ(render.children[0].name, "model::RenderNode(Alpha test)");
    EXPECT_EQ(render.children[0].value, "2");
    EXPECT_EQ(render.children[1].name, "model::RenderNode(Sum. transparent)");
    EXPECT_EQ(render.children[1].value, "1");
}

}  // namespace
