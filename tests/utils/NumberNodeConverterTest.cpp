#include <gtest/gtest.h>

#include <map>
#include <set>

#include "model/BakeTransform.h"
#include "model/TmpNumberRoot.h"
#include "model/utils/NumberNodeConverter.h"
#include "model/utils/RenderNodePasses.h"
#include "utils/MergeTestSupport.h"

namespace {

using namespace model;
using namespace model::utils;
using namespace mergetest;

class NumberNodeConverterTest : public ::testing::Test {
protected:
    Scene s = makeScene();
    Ptr<Node> top = s.root->rootNode();
    Ptr<TmpNumberRoot> numberRoot = makeTreeNode<TmpNumberRoot>(top, "odometer");
    MaterialRef material = makeMaterial("digits");

    Ptr<RenderNode> digit(const MaterialPtr& m, float offset, std::uint32_t argument = 7) {
        Ptr<RenderNode> node = addTriangle(s, numberRoot, m, offset, fmt::format("d{}", offset));
        node->links[0].argument = argument;
        return node;
    }

    std::vector<const NumberNode*> numbers() const {
        std::vector<const NumberNode*> out;
        for (const auto& node : s.root->renderNodes()) {
            if (node->nodeType() == NodeType::NumberNode) {
                out.push_back(static_cast<const NumberNode*>(node.get()));
            }
        }
        return out;
    }

    void expectThrows(std::string_view text) {
        std::size_t before = s.root->renderNodes().size();
        EXPECT_EQ(failureOf([&] { numberNodeConverter(s.root.get()); }), text);
        EXPECT_EQ(s.root->renderNodes().size(), before);
    }
};

TEST_F(NumberNodeConverterTest, ModelWithoutDigitsIsLeftAlone) {
    // A number root with nothing under it, and a render node elsewhere.
    Ptr<RenderNode> plain = addTriangle(s, top, material);
    EXPECT_FALSE(numberNodeConverter(s.root.get()));
    ASSERT_EQ(s.root->renderNodes().size(), 1u);
    EXPECT_EQ(s.root->renderNodes()[0].get(), plain.get());
    EXPECT_EQ(plain->root, s.root.get());
}

TEST_F(NumberNodeConverterTest, DigitsOfOneMaterialBecomeOneNumberNode) {
    Ptr<RenderNode> before = addTriangle(s, top, material, 0, "before");
    Ptr<RenderNode> d0 = digit(material, 0, 7);
    Ptr<RenderNode> after = addTriangle(s, top, material, 0, "after");
    Ptr<RenderNode> d1 = digit(material, 2, 9);

    EXPECT_TRUE(numberNodeConverter(s.root.get()));
    const auto& list = s.root->renderNodes();
    ASSERT_EQ(list.size(), 3u);
    EXPECT_EQ(list[0].get(), before.get());
    EXPECT_EQ(list[1].get(), after.get());
    EXPECT_EQ(d0->root, nullptr);

    ASSERT_EQ(numbers().size(), 1u);
    const NumberNode& n = *numbers()[0];
    EXPECT_EQ(n.root, s.root.get());
    EXPECT_EQ(n.name, "odometer");
    ASSERT_EQ(n.links.size(), 1u);
    EXPECT_EQ(n.links[0].node.get(), numberRoot.get());
    EXPECT_EQ(n.links[0].argument, 7u);
    // Its own copy of the material, which says that every vertex carries its digit's number.
    ASSERT_TRUE(n.material);
    EXPECT_NE(n.material.get(), material.get());
    const auto& own = static_cast<const PropertiesSet&>(*n.material);
    EXPECT_EQ(own.vertexFormat[COLOR1], 1);
    EXPECT_EQ(material->vertexFormat[COLOR1], 0);
    EXPECT_EQ(own.name, "digits");
    // The meshes one after the other.
    EXPECT_EQ(n.vertices.vertexCount(), 6u);
    EXPECT_EQ(n.indices.indices, (std::vector<std::uint32_t>{0, 1, 2, 3, 4, 5}));
    EXPECT_EQ(n.vertices.attribute(COLOR1).data, (std::vector<float>{0, 0, 0, 1, 1, 1}));
    EXPECT_EQ(n.vertices.attribute(POSITION0).data[12], 2.0f);
    // One entry per digit in the list of the one link, with the digit's own argument and number;
    // the digits have no texture coordinates, so their rectangles are empty.
    EXPECT_EQ(
        n.entries,
        (std::vector<std::vector<NumberEntry>>{{NumberEntry{{7, 0, 0, 0}}, NumberEntry{{9, 1, 0, 0}}}}));
}

TEST_F(NumberNodeConverterTest, DigitsSplitByMaterialAndByNumberRoot) {
    MaterialRef other = makeMaterial("red");
    digit(material, 0);
    digit(other, 1);
    digit(material, 2);
    Ptr<TmpNumberRoot> second = makeTreeNode<TmpNumberRoot>(top, "clock");
    Ptr<RenderNode> far = addTriangle(s, second, material, 5);

    EXPECT_TRUE(numberNodeConverter(s.root.get()));
    ASSERT_EQ(s.root->renderNodes().size(), 3u);
    auto n = numbers();
    ASSERT_EQ(n.size(), 3u);
    // First-seen order: the first root's groups, then the second root's.
    EXPECT_EQ(static_cast<const PropertiesSet&>(*n[0]->material).name, "digits");
    EXPECT_EQ(n[0]->entries[0].size(), 2u);
    EXPECT_EQ(static_cast<const PropertiesSet&>(*n[1]->material).name, "red");
    EXPECT_EQ(n[2]->links[0].node.get(), second.get());
    EXPECT_EQ(n[2]->name, "clock");
    // Number nodes never share a material, not even two copies of one.
    EXPECT_NE(n[0]->material.get(), n[2]->material.get());
}

TEST_F(NumberNodeConverterTest, FailureTexts) {
    {
        SCOPED_TRACE("a skin under a number root");
        Ptr<SkinNode> skin = createNodeAs<SkinNode>("model::SkinNode");
        skin->bones.push_back(numberRoot);
        skin->material = material;
        s.root->addRenderNode(skin);
        expectThrows(kOnlyRenderDigits);
        s.root->removeRenderNode(skin.get());
    }
    {
        SCOPED_TRACE("two links");
        Ptr<RenderNode> d = digit(material, 0);
        d->links.push_back(RenderLink{numberRoot});
        expectThrows(kOneControlNode);
        s.root->removeRenderNode(d.get());
    }
    {
        SCOPED_TRACE("a digit whose primitive cannot be appended");
        Ptr<RenderNode> d = digit(material, 0);
        d->indices.primitive = kTriangleStrip;
        expectThrows(kCantMergeDigits);
        s.root->removeRenderNode(d.get());
    }
    {
        SCOPED_TRACE("digits whose vertex layouts differ");
        digit(material, 0);
        Ptr<RenderNode> d = digit(material, 1);
        d->vertices.setAttribute(TEXCOORD0, 2, std::vector<float>(6, 0.0f));
        expectThrows(kCantMergeDigits);
    }
}

TEST_F(NumberNodeConverterTest, DigitNumbersNameTheirOwnEntriesAfterNumberNodesMerge) {
    // Two equal materials that are separate objects give two number nodes on the same number
    // root, each linked with the argument of its first digit (both 10); the render-node passes
    // unify their copies and merge them into one node whose two equal parents fold into one.
    // Each digit sits at its own x, and all but the first two have their own argument, so every
    // vertex can be traced to the entry its digit number must name.
    MaterialRef twin = copyMaterial(material);
    const std::vector<std::pair<MaterialRef, std::uint32_t>> digits{
        {material, 10}, {twin, 10}, {material, 12}, {twin, 13}, {twin, 14}};
    std::map<float, std::uint32_t> argumentAt;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        const float x = 3.0f * static_cast<float>(i);
        digit(digits[i].first, x, digits[i].second);
        for (float corner : {x, x + 1}) {
            argumentAt[corner] = digits[i].second;
        }
    }
    ASSERT_TRUE(numberNodeConverter(s.root.get()));
    ASSERT_EQ(numbers().size(), 2u);
    runRenderNodePasses(*s.root);
    ASSERT_EQ(numbers().size(), 1u);
    const NumberNode& n = *numbers()[0];
    ASSERT_EQ(n.entries.size(), 1u);
    ASSERT_EQ(n.entries[0].size(), digits.size());

    const auto& positions = n.vertices.attribute(POSITION0).data;
    const auto& digitNumbers = n.vertices.attribute(COLOR1).data;
    std::set<std::uint32_t> named;
    for (std::size_t v = 0; v < n.vertices.vertexCount(); ++v) {
        SCOPED_TRACE(v);
        const std::uint32_t tag = vertexParentTag(n.vertices, v);
        ASSERT_LT(tag, n.entries.size());
        const auto number = static_cast<std::size_t>(digitNumbers[v]);
        ASSERT_LT(number, n.entries[tag].size());
        const NumberEntry& entry = n.entries[tag][number];
        EXPECT_EQ(entry.words[1], number);
        const float x = positions[v * 4];
        EXPECT_EQ(entry.words[0], argumentAt.at(x)) << "x " << x;
        named.insert(entry.words[0]);
    }
    EXPECT_EQ(named, (std::set<std::uint32_t>{10, 12, 13, 14}));
}

TEST_F(NumberNodeConverterTest, ChildfreeIsCheckedOnlyWhenADigitIsMet) {
    // A child under the number root: harmless while no digit hangs there.
    Ptr<Node> child = makeTreeNode<Node>(numberRoot, "child");
    EXPECT_FALSE(numberNodeConverter(s.root.get()));
    // A digit on the child finds the root by walking up; the first digit met throws.
    Ptr<RenderNode> d = addTriangle(s, child, material);
    expectThrows(kNumberRootChildfree);
}

TEST_F(NumberNodeConverterTest, DigitEntryPacksTheTextureRectangleAsHalves) {
    Ptr<RenderNode> d = makeTriangle(top, material);
    d->links[0].argument = 3;
    d->vertices.setAttribute(TEXCOORD1, 2, {0.5f, 0.25f, 1.0f, -2.0f, 0.75f, 0.0f});
    d->vertices.setAttribute(TEXCOORD3, 2, std::vector<float>(6, 9.0f));  // not the lowest channel
    // The rectangle's corners as halves: u 0.5, v -2 and u 1, v 0.25.
    EXPECT_EQ(digitEntry(*d, 4), (NumberEntry{{3, 4, 0xC0003800u, 0x34003C00u}}));
    // Without texture coordinates the rectangle is empty.
    d->vertices.attributes.erase(TEXCOORD1);
    d->vertices.attributes.erase(TEXCOORD3);
    EXPECT_EQ(digitEntry(*d, 0), (NumberEntry{{3, 0, 0, 0}}));
}

TEST(HalfBits, RoundsToNearestEvenAndKeepsTheEdges) {
    EXPECT_EQ(halfBits(0.0f), 0x0000u);
    EXPECT_EQ(halfBits(-0.0f), 0x8000u);
    EXPECT_EQ(halfBits(65504.0f), 0x7BFFu);
    EXPECT_EQ(halfBits(65520.0f), 0x7C00u);  // halfway to the next step rounds up to infinity
    EXPECT_EQ(halfBits(-1e9f), 0xFC00u);
    EXPECT_EQ(halfBits(std::numeric_limits<float>::quiet_NaN()) & 0x7FFFu, 0x7E00u);
    EXPECT_EQ(halfBits(1.0f + 0x1p-11f), 0x3C00u);      // tie, even stays
    EXPECT_EQ(halfBits(1.0f + 3 * 0x1p-11f), 0x3C02u);  // tie, odd rounds up
    EXPECT_EQ(halfBits(0x1p-24f), 0x0001u);             // smallest subnormal
    EXPECT_EQ(halfBits(0x1p-14f - 0x1p-25f), 0x0400u);  // rounds into the normals
    EXPECT_EQ(halfBits(0x1p-26f), 0x0000u);
}

TEST(MergeDigits, RefusesANumberNodeWithSeveralLinks) {
    Scene s = makeScene();
    MaterialRef m = makeMaterial("m");
    Ptr<RenderNode> d = makeTriangle(s.root->rootNode(), m);
    Ptr<NumberNode> number = createNodeAs<NumberNode>("model::NumberNode");
    number->links = {RenderLink{s.root->rootNode()}, RenderLink{s.root->rootNode()}};
    std::vector<Ptr<RenderNode>> digits{d};
    EXPECT_FALSE(mergeDigits(*number, digits));
    EXPECT_EQ(number->links.size(), 2u);
    number->links.clear();
    // A digit without a material cannot give the number its own copy.
    d->material = {};
    EXPECT_FALSE(mergeDigits(*number, digits));
    d->material = m;
    EXPECT_TRUE(mergeDigits(*number, digits));
}

}  // namespace
