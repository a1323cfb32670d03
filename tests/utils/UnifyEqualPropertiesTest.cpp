#include <gtest/gtest.h>

#include "model/utils/UnifyEqualProperties.h"
#include "utils/MergeTestSupport.h"
#include "utils/ReferenceMerging.h"

namespace {

using namespace model;
using namespace model::utils;
using namespace mergetest;

TEST(AreEqual, UnusedSlotsMatchWhateverTheyHoldAndTheCullingFlagDoesNotCount) {
    MaterialRef a = makeMaterial("m");
    MaterialRef b = copyMaterial(a);
    b->textures[4].wrapU = 9;  // unused slot
    b->culling = 0;
    EXPECT_TRUE(areEqual(*a, *b));
    EXPECT_EQ(materialHash(a.get()), materialHash(b.get()));

    a->textures[0].name = "wood";
    b->textures[0].name = "wood";
    b->textures[0].matrix[12] = 1e-5f;  // within the tolerance
    EXPECT_TRUE(areEqual(*a, *b));
    b->textures[0].matrix[12] = 2e-5f;
    EXPECT_FALSE(areEqual(*a, *b));
    b->textures[0].matrix[12] = 0;
    b->textures[0].texCoordChannel = 1;
    EXPECT_FALSE(areEqual(*a, *b));
    EXPECT_FALSE(areEqualMaterials(a.get(), nullptr));
}

class UnifyTest : public ::testing::Test {
protected:
    Scene s = makeScene();
    void add(const MaterialPtr& m) { addTriangle(s, s.root->rootNode(), m); }
    const BaseMaterial* materialOf(std::size_t i) const {
        return s.root->renderNodes().at(i)->material.get();
    }
};

TEST_F(UnifyTest, DuplicatesTakeTheFirstSeenMaterialAndTheResultSaysWhetherTheCountFell) {
    MaterialRef a = makeMaterial("a");
    MaterialRef b = makeMaterial("b");
    MaterialRef a2 = copyMaterial(a);
    a2->uniforms.push_back(createFloatProperty("gloss", 0.5f));
    a->uniforms.push_back(createFloatProperty("gloss", 0.5f + 5e-6f));
    add(b);
    add(a);
    add(a2);
    add(b);
    add(a2);
    EXPECT_TRUE(unifyEqualProperties(*s.root));
    EXPECT_EQ(materialOf(2), a.get());
    EXPECT_EQ(materialOf(4), a.get());
    EXPECT_EQ(materialOf(3), b.get());
    EXPECT_FALSE(unifyEqualProperties(*s.root));
}

TEST_F(UnifyTest, EqualityThatHoldsOneWayOnlyFailsTheCheck) {
    // a's two uniforms each find their equal in b, but b's "w" finds none in a: a equals b, b does
    // not equal a. Seen first, a stays; b is not taken for a duplicate; the pair check finds a
    // before b and fails.
    MaterialRef a = makeMaterial("m");
    MaterialRef b = copyMaterial(a);
    a->uniforms = {createFloatProperty("u", 1.0f), createFloatProperty("u", 1.0f + 4e-6f)};
    b->uniforms = {createFloatProperty("u", 1.0f), createFloatProperty("w", 1.0f)};
    add(a);
    add(b);
    EXPECT_EQ(failureOf([&] { unifyEqualProperties(*s.root); }), "There is still equal properties sets.");
    // In the other order b is seen first and a becomes b.
    Scene other = makeScene();
    addTriangle(other, other.root->rootNode(), b);
    addTriangle(other, other.root->rootNode(), a);
    EXPECT_TRUE(unifyEqualProperties(*other.root));
    EXPECT_EQ(other.root->renderNodes()[1]->material.get(), b.get());
}

TEST(UnifyEqualProperties, BucketsGiveTheSameResultAsComparingAllMaterials) {
    for (std::uint32_t seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        Scene fast = randomScene(seed, 40);
        Scene slow = randomScene(seed, 40);
        // More near-equal materials: uniforms within and outside the tolerance, one-way equality.
        for (Scene* s : {&fast, &slow}) {
            for (std::size_t i = 0; i < s->materials.size(); ++i) {
                if (i % 4 == seed % 4) {
                    s->materials[i]->uniforms = {
                        createFloatProperty("u", 1.0f),
                        createFloatProperty("u", 1.0f + 4e-6f * static_cast<float>(i % 3))};
                }
            }
        }
        EXPECT_EQ(outcomeOf([&] {
                      return fmt::format("{}\n{}", unifyEqualProperties(*fast.root),
                                         dumpModel(*fast.root, fast.materials));
                  }),
                  outcomeOf([&] {
                      return fmt::format("{}\n{}", reference::unifyEqualProperties(*slow.root),
                                         dumpModel(*slow.root, slow.materials));
                  }));
    }
}

}  // namespace
