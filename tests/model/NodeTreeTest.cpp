#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "model/NodeCreators.h"
#include "model/Property.h"
#include "model/PropertyCreators.h"
#include "model/RootNode.h"

namespace {

using namespace model;

// Names of the children, in order, checked against both sibling chains and the end links.
std::string childNames(const Ptr<Node>& parent) {
    std::string forward;
    for (Node* c = parent->firstChild().get(); c; c = c->nextSibling().get()) {
        EXPECT_EQ(c->parent().get(), parent.get());
        forward += c->name;
    }
    std::string backward;
    for (Node* c = parent->lastChild().get(); c; c = c->prevSibling().get()) {
        backward.insert(0, c->name);
    }
    EXPECT_EQ(forward, backward);
    std::string viaChildren;
    for (const Ptr<Node>& c : parent->children()) {
        viaChildren += c->name;
    }
    EXPECT_EQ(forward, viaChildren);
    return forward;
}

// Every test tree lives in a RootNode, which frees its cycles.
struct Tree {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    Ptr<Node> top = createNode("r");
    Tree() { root->setRootNode(top); }
    Ptr<Node> add(const Ptr<Node>& parent, const std::string& name) {
        Ptr<Node> n = createNode(name);
        parent->append(n);
        return n;
    }
};

TEST(NodeTree, InsertPlacesBeforePositionOrAtTheEndAndRemoveClosesTheGap) {
    Tree t;
    Ptr<Node> a = t.add(t.top, "a");
    Ptr<Node> c = t.add(t.top, "c");
    Ptr<Node> b = createNode("b");
    t.top->insert(c, b);
    EXPECT_EQ(childNames(t.top), "abc");
    Ptr<Node> first = createNode("0");
    t.top->insert(a, first);
    EXPECT_EQ(childNames(t.top), "0abc");

    t.top->remove(first);  // head
    EXPECT_EQ(childNames(t.top), "abc");
    t.top->remove(b);  // middle
    EXPECT_EQ(childNames(t.top), "ac");
    t.top->remove(c);  // tail
    EXPECT_EQ(childNames(t.top), "a");
    EXPECT_FALSE(b->parent());
    EXPECT_FALSE(b->nextSibling());
    EXPECT_FALSE(b->prevSibling());
    t.top->remove(a);
    EXPECT_FALSE(t.top->firstChild());
    EXPECT_FALSE(t.top->lastChild());
}

TEST(NodeTree, InsertingANodeThatHasAParentMovesIt) {
    Tree t;
    Ptr<Node> p = t.add(t.top, "p");
    Ptr<Node> q = t.add(t.top, "q");
    Ptr<Node> x = t.add(p, "x");
    Ptr<Node> y = t.add(p, "y");
    Ptr<Node> z = t.add(q, "z");
    q->insert(z, x);
    EXPECT_EQ(childNames(p), "y");
    EXPECT_EQ(childNames(q), "xz");
    // Within one parent: to the end, and back before the other.
    q->append(x);
    EXPECT_EQ(childNames(q), "zx");
    q->insert(z, x);
    EXPECT_EQ(childNames(q), "xz");
    q->insert(x, x);  // before itself: stays
    EXPECT_EQ(childNames(q), "xz");
}

TEST(NodeTree, RefusesMovesThatWouldMakeACycleOrUseAForeignPosition) {
    Tree t;
    Ptr<Node> p = t.add(t.top, "p");
    Ptr<Node> c = t.add(p, "c");
    Ptr<Node> other = t.add(t.top, "o");
    EXPECT_THROW(c->append(p), nq::ExtException);
    EXPECT_THROW(p->append(p), nq::ExtException);
    EXPECT_THROW(p->insert(other, createNode("n")), nq::ExtException);
    EXPECT_THROW(p->remove(other), nq::ExtException);
    EXPECT_EQ(childNames(t.top), "po");
    EXPECT_EQ(childNames(p), "c");
}

TEST(NodeTree, VisitIsPreOrderAndAFalseResultSkipsOnlyThatSubtree) {
    Tree t;
    Ptr<Node> a = t.add(t.top, "a");
    t.add(a, "a1");
    t.add(a, "a2");
    Ptr<Node> b = t.add(t.top, "b");
    t.add(b, "b1");

    std::string order;
    t.top->visit([&](const Ptr<Node>& n) {
        order += n->name + " ";
        return n->name != "a";
    });
    EXPECT_EQ(order, "r a b b1 ");

    int calls = 0;
    t.top->visit([&](const Ptr<Node>&) {
        ++calls;
        return false;
    });
    EXPECT_EQ(calls, 1);

    EXPECT_THROW(t.top->visit(Node::Predicate()), std::bad_function_call);
}

TEST(NodeTree, AncestorsAndTheCommonAncestor) {
    Tree t;
    Ptr<Node> a = t.add(t.top, "a");
    Ptr<Node> a1 = t.add(a, "a1");
    Ptr<Node> a11 = t.add(a1, "a11");
    Ptr<Node> b = t.add(t.top, "b");

    std::string names;
    for (const Ptr<Node>& n : a11->ancestors()) {
        names += n->name + " ";
    }
    EXPECT_EQ(names, "a11 a1 a r ");

    std::string visited;
    a11->visitAncestors([&](const Ptr<Node>& n) {
        visited += n->name + " ";
        return n != a1;
    });
    EXPECT_EQ(visited, "a11 a1 ");

    EXPECT_EQ(Node::commonAncestor(a11, b), t.top);
    EXPECT_EQ(Node::commonAncestor(a11, a1), a1);
    EXPECT_EQ(Node::commonAncestor(a1, a11), a1);
    Ptr<Node> loose = createNode("loose");
    EXPECT_FALSE(Node::commonAncestor(a11, loose));
}

TEST(NodeTree, SetVersionAddsOrReplacesOnlyWhenTheValueDiffers) {
    Ptr<Node> n = createNode("n");
    n->properties.push_back(createFloatProperty("first", 1.0f));
    n->setVersion(2);
    ASSERT_EQ(n->properties.size(), 2u);
    std::uint32_t v = 0;
    EXPECT_TRUE(getProperty(n->properties, "__VERSION__", v));
    EXPECT_EQ(v, 2u);

    const IProperty* stored = n->properties[1].get();
    n->setVersion(2);
    ASSERT_EQ(n->properties.size(), 2u);
    EXPECT_EQ(n->properties[1].get(), stored);  // untouched, not replaced by an equal one

    n->setVersion(5);
    ASSERT_EQ(n->properties.size(), 2u);
    EXPECT_NE(n->properties[1].get(), stored);
    EXPECT_TRUE(getProperty(n->properties, "__VERSION__", v));
    EXPECT_EQ(v, 5u);

    // A "__VERSION__" of another class is replaced in its place.
    Ptr<Node> m = createNode("m");
    m->properties.push_back(createFloatProperty("__VERSION__", 2.0f));
    m->setVersion(2);
    ASSERT_EQ(m->properties.size(), 1u);
    EXPECT_TRUE(getProperty(m->properties, "__VERSION__", v));
}

TEST(NodeTree, SetNameWithNullClears) {
    Ptr<Node> n = createNode("named");
    n->setName(nullptr);
    EXPECT_EQ(n->name, "");
    n->setName("again");
    EXPECT_EQ(n->name, "again");
}

}  // namespace
