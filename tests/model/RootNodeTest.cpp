#include <gtest/gtest.h>

#include <string>

#include "model/ArgAnimationNode.h"
#include "model/ArgVisibilityNode.h"
#include "model/Bone.h"
#include "model/NodeCreators.h"
#include "model/PropertiesSet.h"
#include "model/PropertyCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/SegmentsNode.h"

namespace {

using namespace model;

Ptr<RootNode> makeRoot() {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    root->setRootNode(createNode("top"));
    return root;
}

Ptr<RenderNode> renderOn(std::initializer_list<Ptr<Node>> parents) {
    Ptr<RenderNode> r = createNodeAs<RenderNode>("model::RenderNode");
    for (const Ptr<Node>& p : parents) {
        r->links.push_back(RenderLink{p});
    }
    return r;
}

// The version and the empty boxes of a new root stand in the writer's minimal file, byte for byte.
TEST(RootNode, StartsWithEmptyBoxesAndNoLinks) {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    EXPECT_EQ(root->flags[0], 0);
    EXPECT_EQ(root->flags[1], 0);
    for (const Box* box : {&root->boundingBox, &root->userBox, &root->lightBox}) {
        EXPECT_FALSE(box->isValid());
    }
    EXPECT_EQ(root->linkCount(), 0u);
    EXPECT_FALSE(root->link(0));
    root->setLink(0, createNode("ignored"));
    EXPECT_FALSE(root->link(0));
    EXPECT_EQ(root->calcNumHandles(), 0u);
    EXPECT_FALSE(root->hasBones());
}

TEST(RootNode, NumberOfHandlesIsTheHighestArgumentPlusOne) {
    Ptr<RootNode> root = makeRoot();
    Ptr<Node> top = root->rootNode();
    top->properties.push_back(createFloatProperty("static", 1.0f));
    // Unbound animated properties do not count.
    top->properties.push_back(createAnimatedProperty<AnimatedFloatProperty>("unbound", kNoArgument));
    root->addRenderNode(renderOn({top}));
    EXPECT_EQ(root->calcNumHandles(), 0u);

    top->properties.push_back(createArgumentProperty("arg", 5));
    EXPECT_EQ(root->calcNumHandles(), 6u);  // not the count of distinct arguments

    // Arguments anywhere count: a channel deep in the tree, a light's animated property.
    Ptr<ArgAnimationNode> anim = createNodeAs<ArgAnimationNode>("model::ArgAnimationNode");
    anim->rotationChannels.push_back(RotationChannel{9, {}});
    top->append(anim);
    EXPECT_EQ(root->calcNumHandles(), 10u);
    Ptr<LightNode> light = createNodeAs<LightNode>("model::LightNode");
    light->controlNode = top;
    light->brightness = createAnimatedProperty<AnimatedFloatProperty>("Brightness", 12);
    root->addLightNode(light);
    EXPECT_EQ(root->calcNumHandles(), 13u);
    Ptr<ArgVisibilityNode> vis = createNodeAs<ArgVisibilityNode>("model::ArgVisibilityNode");
    vis->entries.push_back(VisibilityEntry{20, {{0.0, 1.0}}});
    anim->append(vis);
    EXPECT_EQ(root->calcNumHandles(), 21u);
}

TEST(RootNode, UsersAndTheirLinksInListOrder) {
    Ptr<RootNode> root = makeRoot();
    Ptr<Node> top = root->rootNode();
    Ptr<Node> a = createNode("a");
    Ptr<Node> b = createNode("b");
    top->append(a);
    top->append(b);

    Ptr<RenderNode> render = renderOn({a, b, a});
    Ptr<SegmentsNode> shell = createNodeAs<SegmentsNode>("model::SegmentsNode");
    shell->controlNode = a;
    Ptr<LightNode> light = createNodeAs<LightNode>("model::LightNode");
    light->controlNode = a;
    Ptr<Connector> connector = createNodeAs<Connector>("model::Connector");
    connector->controlNode = b;
    root->addRenderNode(render);
    root->addShellNode(shell);
    root->addLightNode(light);
    root->addConnector(connector);
    EXPECT_EQ(render->root, root.get());
    EXPECT_EQ(connector->root, root.get());

    std::vector<Ptr<BaseNode>> users = root->allUsers();
    ASSERT_EQ(users.size(), 4u);
    EXPECT_EQ(users[0].get(), connector.get());
    EXPECT_EQ(users[1].get(), light.get());
    EXPECT_EQ(users[2].get(), shell.get());
    EXPECT_EQ(users[3].get(), render.get());

    std::vector<NodeLink> links = root->linksOf(a.get());
    ASSERT_EQ(links.size(), 4u);
    EXPECT_EQ(links[0].user.get(), light.get());
    EXPECT_EQ(links[1].user.get(), shell.get());
    EXPECT_EQ(links[2].user.get(), render.get());
    EXPECT_EQ(links[2].link, 0u);
    EXPECT_EQ(links[3].link, 2u);

    EXPECT_TRUE(root->isLinked(b.get()));
    EXPECT_FALSE(root->isLinked(top.get()));
    EXPECT_TRUE(root->replaceLinks(a.get(), top));
    EXPECT_FALSE(root->isLinked(a.get()));
    EXPECT_EQ(render->link(0), top);
    EXPECT_EQ(render->link(1), b);
    EXPECT_EQ(render->link(2), top);
    EXPECT_EQ(light->controlNode, top);
    EXPECT_FALSE(root->replaceLinks(a.get(), b));

    // Removal fills the place with the last element and clears the node's root.
    Ptr<RenderNode> second = renderOn({b});
    Ptr<RenderNode> third = renderOn({b});
    root->addRenderNode(second);
    root->addRenderNode(third);
    EXPECT_TRUE(root->removeRenderNode(render.get()));
    EXPECT_EQ(render->root, nullptr);
    ASSERT_EQ(root->renderNodes().size(), 2u);
    EXPECT_EQ(root->renderNodes()[0].get(), third.get());
    EXPECT_EQ(root->renderNodes()[1].get(), second.get());
    EXPECT_FALSE(root->removeRenderNode(render.get()));
}

TEST(RootNode, MaterialsAreCollectedOnceByPointerInRenderOrder) {
    Ptr<RootNode> root = makeRoot();
    Ptr<Node> top = root->rootNode();
    MaterialPtr m1(new PropertiesSet());
    MaterialPtr m2(new PropertiesSet());  // equal in every field, still a second material
    MaterialPtr unused(new PropertiesSet());
    for (const MaterialPtr& m : {m2, m1, m2, MaterialPtr()}) {
        Ptr<RenderNode> r = renderOn({top});
        r->material = m;
        root->addRenderNode(r);
    }
    root->collectMaterials();
    ASSERT_EQ(root->materials.size(), 2u);
    EXPECT_EQ(root->materialIndex(m2.get()), 0);
    EXPECT_EQ(root->materialIndex(m1.get()), 1);
    EXPECT_EQ(root->materialIndex(unused.get()), -1);
    EXPECT_EQ(root->materialIndex(nullptr), -1);
}

TEST(RootNode, HasBonesFindsABoneAnywhereInTheTree) {
    Ptr<RootNode> root = makeRoot();
    Ptr<Node> mid = createNode("mid");
    root->rootNode()->append(mid);
    mid->append(createNode("leaf"));
    EXPECT_FALSE(root->hasBones());
    mid->append(createNodeAs<Bone>("model::Bone"));
    EXPECT_TRUE(root->hasBones());
}

// A tree with parent, sibling and child cycles everywhere, users that link into it and into a
// detached branch, and a LOD, a bone and animation nodes on the way.
void buildCyclicModel() {
    Ptr<RootNode> root = makeRoot();
    Ptr<Node> top = root->rootNode();
    Ptr<Node> chain = top;
    for (int depth = 0; depth < 200; ++depth) {
        const char* keys[] = {"model::Node", "model::TransformNode", "model::LodNode", "model::Bone",
                              "model::ArgAnimationNode"};
        Ptr<Node> next;
        for (int sibling = 0; sibling < 3; ++sibling) {
            Ptr<Node> n = createNodeAs<Node>(keys[(depth + sibling) % 5]);
            n->properties.push_back(createUIntProperty("i", static_cast<std::uint32_t>(depth)));
            chain->append(n);
            next = n;
        }
        chain = next;
    }
    Ptr<Node> detached = createNode("detached");
    Ptr<Node> detachedChild = createNode("detachedChild");
    detached->append(detachedChild);
    detached->append(createNode("detachedChild2"));

    Ptr<RenderNode> r = renderOn({chain, detachedChild});
    r->material = MaterialPtr(new PropertiesSet());
    root->addRenderNode(r);
    Ptr<Connector> c = createNodeAs<Connector>("model::Connector");
    c->controlNode = top->lastChild();
    root->addConnector(c);
}

TEST(RootNode, DestructorFreesEveryNodeOfACyclicTree) {
    ObjectRegistry& registry = ObjectRegistry::instance();
    std::size_t before = registry.objectCount();
    buildCyclicModel();
    EXPECT_EQ(registry.objectCount(), before);
}

TEST(RootNode, ACloneHasTheRootsFieldsButNotItsModel) {
    Ptr<RootNode> root = makeRoot();
    root->name = "scene";
    root->flags[1] = 1;
    root->userBox.expand(osg::Vec3f{{1, 2, 3}});
    root->addRenderNode(renderOn({root->rootNode()}));
    Ptr<RootNode> copy = cloneNode(*root);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->name, "scene");
    EXPECT_EQ(copy->flags[1], 1);
    EXPECT_EQ(copy->userBox, root->userBox);
    EXPECT_EQ(copy->version, 3u);
    EXPECT_FALSE(copy->rootNode());
    EXPECT_TRUE(copy->renderNodes().empty());
}

}  // namespace
