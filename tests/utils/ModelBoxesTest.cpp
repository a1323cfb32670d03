#include <gtest/gtest.h>

#include "model/LightNode.h"
#include "model/NodeCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/SkinNode.h"
#include "model/TransformNode.h"
#include "model/utils/ModelBoxes.h"
#include "utils/MergeTestSupport.h"

namespace {

using namespace model;
using mergetest::taggedPositions;
using model::utils::computeBoundingBox;
using model::utils::computeLightBox;

Ptr<TransformNode> moved(const Ptr<Node>& parent, double x, double y, double z, double scale = 1) {
    Ptr<TransformNode> t = createNodeAs<TransformNode>("model::TransformNode");
    t->matrix = nq::scaleMatrix(nq::Vec3d{{scale, scale, scale}}) * nq::translateMatrix(nq::Vec3d{{x, y, z}});
    parent->append(t);
    return t;
}

TEST(ModelBoxes, EmptyModelsHaveEmptyBoxes) {
    mergetest::Scene s = mergetest::makeScene();
    EXPECT_FALSE(computeBoundingBox(*s.root).isValid());
    EXPECT_EQ(computeBoundingBox(*s.root), Box{});
    EXPECT_EQ(computeLightBox(*s.root), Box{});
}

TEST(ModelBoxes, VerticesGoThroughTheChainOfTheParentTheirTagNames) {
    mergetest::Scene s = mergetest::makeScene();
    const Ptr<RootNode>& root = s.root;
    const Ptr<Node> top = root->rootNode();
    // The outer transform scales by 2 after moving by 10 in x; the inner ones move again.
    Ptr<TransformNode> outer = moved(top, 10, 0, 0);
    Ptr<TransformNode> left = moved(outer, 0, 5, 0, 2);
    Ptr<TransformNode> right = moved(outer, 0, 0, -3);

    Ptr<RenderNode> r = createNodeAs<RenderNode>("model::RenderNode");
    r->links = {RenderLink{left}, RenderLink{right}};
    r->vertices = taggedPositions({{1, 1, 1, 0}, {-1, 0, 0, 0}, {0, 0, 0, 1}, {2, 2, 2, 1}});
    root->addRenderNode(r);

    // Skin data follows bones, not the tree, and is left out.
    Ptr<SkinNode> skin = createNodeAs<SkinNode>("model::SkinNode");
    skin->vertices = taggedPositions({{1000, 1000, 1000, 0}});
    root->addRenderNode(skin);

    Box box = computeBoundingBox(*root);
    // left: p * 2 + (0,5,0) then + (10,0,0): (1,1,1) -> (12,7,2), (-1,0,0) -> (8,5,0)
    // right: p + (0,0,-3) + (10,0,0): (0,0,0) -> (10,0,-3), (2,2,2) -> (12,2,-1)
    EXPECT_EQ(box.min, (osg::Vec3f{{8, 0, -3}}));
    EXPECT_EQ(box.max, (osg::Vec3f{{12, 7, 2}}));
}

TEST(ModelBoxes, LightBoxHoldsThePositionsOfTheLightsTreeNodes) {
    mergetest::Scene s = mergetest::makeScene();
    const Ptr<RootNode>& root = s.root;
    const Ptr<Node> top = root->rootNode();
    for (double x : {4.0, -2.0}) {
        Ptr<LightNode> light = createNodeAs<LightNode>("model::LightNode");
        light->setLink(0, moved(top, x, 1, x * 2));
        root->addLightNode(light);
    }
    Box box = computeLightBox(*root);
    EXPECT_EQ(box.min, (osg::Vec3f{{-2, 1, -4}}));
    EXPECT_EQ(box.max, (osg::Vec3f{{4, 1, 8}}));
}

}  // namespace
