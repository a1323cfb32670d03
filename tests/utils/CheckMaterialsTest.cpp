#include <gtest/gtest.h>

#include "model/utils/CheckMaterials.h"
#include "utils/MergeTestSupport.h"

namespace {

using namespace model;
using namespace model::utils;
using namespace mergetest;

// A material of another kind than PropertiesSet, which the writer cannot save.
class OtherMaterial : public BaseMaterial {};

class CheckMaterialsTest : public ::testing::Test {
protected:
    Scene s = makeScene();

    Ptr<RenderNode> add(const MaterialPtr& material, const std::string& name) {
        return addTriangle(s, s.root->rootNode(), material, 0, name);
    }
};

TEST_F(CheckMaterialsTest, SoundMaterialsGiveNothing) {
    MaterialRef m = makeMaterial("Paint");
    m->vertexFormat[TEXCOORD0] = 2;
    m->textureChannels[0] = 0;
    add(m, "hull");
    add(makeMaterial("Glass"), "window");
    EXPECT_TRUE(checkMaterials(*s.root).empty());
}

TEST_F(CheckMaterialsTest, NodesWithoutAMaterialTheWriterCanSaveAreNamedEachInTurn) {
    add(nullptr, "hull");
    add(MaterialPtr(new OtherMaterial()), "mast");
    // A node that draws nothing is dropped before saving and is no fault.
    add(nullptr, "ghost")->indices = Indices(kTriangleList, {});
    EXPECT_EQ(checkMaterials(*s.root), (std::vector<std::string>{"Unknown properties set. Node: hull.",
                                                                 "Unknown properties set. Node: mast."}));
}

TEST_F(CheckMaterialsTest, FaultyLayoutsAreNamedOncePerMaterial) {
    MaterialRef broken = makeMaterial("Hull");
    broken->textureChannels[3] = 1;  // the format holds no TEXCOORD1
    add(broken, "bow");
    add(broken, "stern");
    MaterialRef past = makeMaterial("Deck");
    past->textureChannels[0] = 16;  // there are 16 channels, 0 to 15
    add(past, "deck");
    MaterialRef flat = makeMaterial("Sail");
    flat->vertexFormat[POSITION0] = 0;
    add(flat, "sail");
    EXPECT_EQ(checkMaterials(*s.root), (std::vector<std::string>{"Broken texture channels. Material: Hull.",
                                                                 "Broken texture channels. Material: Deck.",
                                                                 "Wrong vertex size. Material: Sail."}));
}

TEST_F(CheckMaterialsTest, LayoutsOfMaterialsWithoutMeshesAreNotTheirConcern) {
    // Fake lights have no vertices for a format to describe.
    MaterialRef flat = makeMaterial("Glow");
    flat->vertexFormat[POSITION0] = 0;
    Ptr<FakeOmniLightsNode> lights = createNodeAs<FakeOmniLightsNode>("model::FakeOmniLightsNode");
    lights->material = flat;
    lights->lights.push_back(FakeOmniLight{});
    s.root->addRenderNode(lights);
    EXPECT_TRUE(checkMaterials(*s.root).empty());
}

}  // namespace
