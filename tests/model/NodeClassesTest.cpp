#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/AnimatedFakeLights.h"
#include "model/ArgAnimatedBone.h"
#include "model/ArgVisibilityNode.h"
#include "model/BillboardNode.h"
#include "model/Bone.h"
#include "model/FakeSpotLights3Node.h"
#include "model/LodNode.h"
#include "model/NodeCreators.h"
#include "model/NumberNode.h"
#include "model/Property.h"
#include "model/PropertyCreators.h"
#include "model/RootNode.h"
#include "model/SegmentsNode.h"
#include "model/ShellSkinNode.h"
#include "model/SkinNode.h"
#include "model/TmpNumberRoot.h"

namespace {

using namespace model;

const char* const kNodeKeys[] = {
    "model::FakeOmniLightsNode",
    "model::AnimatedFakeOmniLightsNode",
    "model::AnimatedFakeSpotLightsNode",
    "model::FakeSpotLightsNode",
    "model::FakeSpotLights3Node",
    "model::NumberNode",
    "model::RootNode",
    "model::Node",
    "model::RenderNode",
    "model::LightNode",
    "model::TransformNode",
    "model::BillboardNode",
    "model::SkinNode",
    "model::ShellNode",
    "model::ShellSkinNode",
    "model::SegmentsNode",
    "model::LodNode",
    "model::ArgVisibilityNode",
    "model::ArgAnimationNode",
    "model::Connector",
    "model::Bone",
    "model::ArgAnimatedBone",
    "model::TmpNumberRoot",
};
const char* const kAliasKeys[] = {"model::ArgScaleNode", "model::ArgRotationNode", "model::ArgPositionNode"};

TEST(NodeClasses, AllThirtySevenKeysAreRegisteredAndEachNodeKeyMakesItsClass) {
    ObjectRegistry& registry = ObjectRegistry::instance();
    EXPECT_EQ(registry.classCount(), 37u);
    for (const char* key : kNodeKeys) {
        SCOPED_TRACE(key);
        Ptr<INode> node = createNodeAs<INode>(key);
        ASSERT_TRUE(node);
        EXPECT_STREQ(nodeTypeName(node->nodeType()), key);
    }
    for (const char* key : kAliasKeys) {
        SCOPED_TRACE(key);
        Ptr<INode> node = createNodeAs<INode>(key);
        ASSERT_TRUE(node);
        EXPECT_EQ(node->nodeType(), NodeType::ArgAnimationNode);
        EXPECT_NE(dynamic_cast<ArgAnimationNode*>(node.get()), nullptr);
    }
    // Typed creation refuses another class and an unknown key.
    EXPECT_FALSE(createNodeAs<TransformNode>("model::Node"));
    EXPECT_FALSE(createNodeAs<Node>("model::Nothing"));
    nq::Matrixd m = nq::translateMatrix(nq::Vec3d{{1, 2, 3}});
    EXPECT_EQ(createTransformNode("t", m)->matrix, m);
}

TEST(NodeClasses, TypeNamesCoverTheTableAndNothingElse) {
    EXPECT_STREQ(nodeTypeName(0u), "model::ArgAnimatedBone");
    EXPECT_STREQ(nodeTypeName(14u), "model::TreeShellNode");
    EXPECT_STREQ(nodeTypeName(26u), "model::TmpNumberRoot");
    EXPECT_STREQ(nodeTypeName(27u), "UNKNOWN_NODE_ID");
    EXPECT_STREQ(nodeTypeName(0xFFFFFFFFu), "UNKNOWN_NODE_ID");
    EXPECT_FALSE(ObjectRegistry::instance().isRegistered("model::TreeShellNode"));
}

TEST(NodeClasses, CloneKeepsClassAndFieldsAndMakesAnUnlinkedRegisteredCopy) {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    Ptr<Node> top = createNode("top");
    root->setRootNode(top);

    Ptr<ArgAnimatedBone> bone = createNodeAs<ArgAnimatedBone>("model::ArgAnimatedBone");
    bone->name = "bone";
    bone->boneMatrix = nq::scaleMatrix(nq::Vec3d{{2, 2, 2}});
    bone->matrix = nq::translateMatrix(nq::Vec3d{{0, 1, 0}});
    bone->basePosition = nq::Vec3d{{4, 5, 6}};
    bone->positionChannels.push_back(PositionChannel{3, {PositionKey{0.5, nq::Vec3d{{1, 1, 1}}}}});
    bone->properties.push_back(createUIntProperty("p", 7));
    top->append(bone);
    bone->append(createNode("child"));

    Ptr<ArgAnimatedBone> copy = cloneNode(*bone);
    ASSERT_TRUE(copy);
    EXPECT_NE(copy.get(), bone.get());
    EXPECT_EQ(copy->registry, &ObjectRegistry::instance());
    EXPECT_EQ(copy->name, "bone");
    EXPECT_EQ(copy->boneMatrix, bone->boneMatrix);
    EXPECT_EQ(copy->matrix, bone->matrix);
    EXPECT_EQ(copy->basePosition, bone->basePosition);
    ASSERT_EQ(copy->positionChannels.size(), 1u);
    EXPECT_EQ(copy->positionChannels[0].argument, 3u);
    std::uint32_t p = 0;
    EXPECT_TRUE(getProperty(copy->properties, "p", p));
    EXPECT_FALSE(copy->parent());
    EXPECT_FALSE(copy->firstChild());
    EXPECT_EQ(bone->parent(), top);  // the original keeps its place

    Ptr<LightNode> light = createNodeAs<LightNode>("model::LightNode");
    light->controlNode = top;
    light->lightFlag = LightNode::kSpot;
    light->setLightKind(2);
    light->texture.name = "glow";
    root->addLightNode(light);
    Ptr<LightNode> lightCopy = cloneNode(*light);
    ASSERT_TRUE(lightCopy);
    EXPECT_EQ(lightCopy->controlNode, top);
    EXPECT_EQ(lightCopy->lightFlag, LightNode::kSpot);
    EXPECT_EQ(lightCopy->lightKind, 2);
    EXPECT_EQ(lightCopy->version, 3u);
    EXPECT_EQ(lightCopy->texture.name, "glow");
    EXPECT_EQ(lightCopy->root, nullptr);  // in no list yet

    // The class comes from the registry key of the node's own type, for every class.
    for (const char* key : kNodeKeys) {
        SCOPED_TRACE(key);
        Ptr<INode> node = createNodeAs<INode>(key);
        Ptr<INode> clone = node->clone();
        ASSERT_TRUE(clone);
        EXPECT_EQ(typeid(*clone), typeid(*node));
    }
}

TEST(NodeClasses, OptimizerTraitValuesPerClass) {
    struct Expected {
        const char* key;
        TransformPolicy policy;
        bool absorbs;
        bool fixedChildren;
    };
    const Expected table[] = {
        {"model::Node", TransformPolicy::PassThrough, false, false},
        {"model::ArgVisibilityNode", TransformPolicy::PassThrough, false, false},
        {"model::TransformNode", TransformPolicy::Absorb, true, false},
        {"model::ArgAnimationNode", TransformPolicy::Absorb, true, false},
        {"model::BillboardNode", TransformPolicy::Block, false, false},
        {"model::Bone", TransformPolicy::Block, false, false},
        {"model::ArgAnimatedBone", TransformPolicy::Block, false, false},
        {"model::TmpNumberRoot", TransformPolicy::Block, false, false},
        {"model::LodNode", TransformPolicy::Block, false, true},
    };
    nq::Matrixd l = nq::translateMatrix(nq::Vec3d{{1, 0, 0}});
    nq::Matrixd m = nq::scaleMatrix(nq::Vec3d{{2, 3, 4}});
    for (const Expected& e : table) {
        SCOPED_TRACE(e.key);
        Ptr<Node> node = createNodeAs<Node>(e.key);
        ASSERT_TRUE(node);
        EXPECT_EQ(node->transformPolicy(), e.policy);
        EXPECT_EQ(node->hasFixedChildren(), e.fixedChildren);
        auto* t = dynamic_cast<TransformNode*>(node.get());
        if (t) {
            t->matrix = l;
        }
        node->absorbTransform(m);
        if (t) {
            // L x M: the translation is scaled too, since M comes after L.
            EXPECT_EQ(t->matrix, e.absorbs ? l * m : l);
        }
        EXPECT_EQ(node->isVisibilityGate(), std::string(e.key) == "model::ArgVisibilityNode");
    }
}

TEST(NodeClasses, FileNodeTypeNamesTheNarrowestAnimationClass) {
    auto typeOf = [](bool pos, bool rot, bool scaleKeys, bool scaleRotKeys, bool bone = false) {
        Ptr<ArgAnimationNode> n =
            bone ? Ptr<ArgAnimationNode>(createNodeAs<ArgAnimatedBone>("model::ArgAnimatedBone"))
                 : createNodeAs<ArgAnimationNode>("model::ArgAnimationNode");
        // Channels without keys do not count.
        n->positionChannels.push_back(PositionChannel{1, {}});
        n->rotationChannels.push_back(RotationChannel{1, {}});
        n->scaleChannels.push_back(ScaleChannel{1, {}, {}});
        if (pos) {
            n->positionChannels[0].keys.push_back(PositionKey{});
        }
        if (rot) {
            n->rotationChannels[0].keys.push_back(RotationKey{});
        }
        if (scaleKeys) {
            n->scaleChannels[0].scaleKeys.push_back(ScaleKey{});
        }
        if (scaleRotKeys) {
            n->scaleChannels[0].rotationKeys.push_back(RotationKey{});
        }
        return n->fileNodeType();
    };
    EXPECT_EQ(typeOf(true, false, false, false), NodeType::ArgPositionNode);
    EXPECT_EQ(typeOf(false, true, false, false), NodeType::ArgRotationNode);
    EXPECT_EQ(typeOf(false, false, true, false), NodeType::ArgScaleNode);
    EXPECT_EQ(typeOf(false, false, false, true), NodeType::ArgScaleNode);
    EXPECT_EQ(typeOf(false, false, false, false), NodeType::ArgScaleNode);
    EXPECT_EQ(typeOf(true, true, false, false), NodeType::ArgAnimationNode);
    EXPECT_EQ(typeOf(true, false, true, false), NodeType::ArgAnimationNode);
    EXPECT_EQ(typeOf(false, true, false, true), NodeType::ArgAnimationNode);
    EXPECT_EQ(typeOf(true, false, false, false, true), NodeType::ArgAnimatedBone);
    EXPECT_EQ(typeOf(false, false, false, false, true), NodeType::ArgAnimatedBone);
    EXPECT_EQ(createNodeAs<Bone>("model::Bone")->fileNodeType(), NodeType::Bone);
}

// Defaults that no written file shows: the golden files hold the billboard's version property and
// the animation node's base values as a new node has them.
TEST(NodeClasses, ConstructorDefaults) {
    EXPECT_TRUE(createNodeAs<ArgAnimationNode>("model::ArgAnimationNode")->isVoid());
    Ptr<LightNode> light = createNodeAs<LightNode>("model::LightNode");
    EXPECT_EQ(light->lightKind, 4);
    EXPECT_EQ(light->textureArgument, -1);
    EXPECT_FALSE(light->hasTexture());
    EXPECT_EQ(light->linkCount(), 1u);
    EXPECT_THROW(light->link(1), std::out_of_range);

    Ptr<SkinNode> skin = createNodeAs<SkinNode>("model::SkinNode");
    EXPECT_FALSE(skin->box.isValid());
    EXPECT_EQ(skin->argument, kNoArgument);
    Ptr<RenderNode> render = createNodeAs<RenderNode>("model::RenderNode");
    EXPECT_EQ(render->linkCount(), 0u);
}

TEST(NodeClasses, LightVolumeSettersRaiseTheVersionOnlyForNonDefaults) {
    Ptr<LightNode> light = createNodeAs<LightNode>("model::LightNode");
    light->setRadiusFactor(createFloatProperty("RadiusFactor", 0.0f));
    light->setDensityFactor(createFloatProperty("DensityFactor", 1.0f));
    light->setNearDistance(createFloatProperty("NearDistance", 0.0f));
    light->setLightKind(4);
    EXPECT_EQ(light->version, 0u);
    EXPECT_FALSE(light->radiusFactor);
    EXPECT_FALSE(light->densityFactor);
    EXPECT_FALSE(light->nearDistance);

    light->setDensityFactor(createFloatProperty("DensityFactor", 0.5f));
    EXPECT_EQ(light->version, 3u);
    ASSERT_TRUE(light->densityFactor);

    // An animated property is never a default, even at those values.
    Ptr<LightNode> animated = createNodeAs<LightNode>("model::LightNode");
    animated->setRadiusFactor(createAnimatedProperty<AnimatedFloatProperty>("RadiusFactor", 2));
    EXPECT_EQ(animated->version, 3u);

    Ptr<LightNode> kind = createNodeAs<LightNode>("model::LightNode");
    kind->setLightKind(0);
    EXPECT_EQ(kind->version, 3u);
    EXPECT_EQ(kind->lightKind, 0);
}

// Records which visit slot each accept reaches.
struct SlotRecorder : INodeVisitor {
    std::vector<std::string> slots;
    void visit(const RootNode&) override { slots.push_back("RootNode"); }
    void visit(const Connector&) override { slots.push_back("Connector"); }
    void visit(const LightNode&) override { slots.push_back("LightNode"); }
    void visit(const NumberNode&) override { slots.push_back("NumberNode"); }
    void visit(const SkinNode&) override { slots.push_back("SkinNode"); }
    void visit(const RenderNode&) override { slots.push_back("RenderNode"); }
    void visit(const AnimatedFakeSpotLightsNode&) override { slots.push_back("AnimatedFakeSpotLightsNode"); }
    void visit(const FakeSpotLights3Node&) override { slots.push_back("FakeSpotLights3Node"); }
    void visit(const FakeSpotLightsNode&) override { slots.push_back("FakeSpotLightsNode"); }
    void visit(const AnimatedFakeOmniLightsNode&) override { slots.push_back("AnimatedFakeOmniLightsNode"); }
    void visit(const FakeOmniLightsNode&) override { slots.push_back("FakeOmniLightsNode"); }
    void visit(const SegmentsNode&) override { slots.push_back("SegmentsNode"); }
    void visit(const ShellSkinNode&) override { slots.push_back("ShellSkinNode"); }
    void visit(const ShellNode&) override { slots.push_back("ShellNode"); }
    void visit(const LodNode&) override { slots.push_back("LodNode"); }
    void visit(const Bone&) override { slots.push_back("Bone"); }
    void visit(const BillboardNode&) override { slots.push_back("BillboardNode"); }
    void visit(const ArgVisibilityNode&) override { slots.push_back("ArgVisibilityNode"); }
    void visit(const ArgAnimatedBone&) override { slots.push_back("ArgAnimatedBone"); }
    void visit(const ArgAnimationNode&) override { slots.push_back("ArgAnimationNode"); }
    void visit(const TransformNode&) override { slots.push_back("TransformNode"); }
    void visit(const Node&) override { slots.push_back("Node"); }
};

TEST(NodeClasses, AcceptReachesTheVisitOfTheNodesOwnClass) {
    for (const char* key : kNodeKeys) {
        SCOPED_TRACE(key);
        Ptr<INode> node = createNodeAs<INode>(key);
        SlotRecorder recorder;
        node->accept(recorder);
        static_cast<const INode&>(*node).accept(recorder);
        std::string expected = std::string(key).substr(7);
        if (expected == "TmpNumberRoot") {
            expected = "Node";
        }
        EXPECT_EQ(recorder.slots, (std::vector<std::string>{expected, expected}));
    }
}

}  // namespace
