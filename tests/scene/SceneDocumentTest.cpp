// What a scene document gives the host operations: the defaults of omitted fields, the objects
// by super class and class, the materials and the file read from disk.

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "host/Constants.h"
#include "scene/SceneLoader.h"
#include "scene/SceneObject.h"

namespace {

using host::Class_ID;

// A node as the host operations give it: name, hidden, group head, user text, whether it has a
// material, an object and an object reference, its children, and whether its node and object
// matrices are the identity.
std::string describe(host::INode& n) {
    return fmt::format("'{}' hidden {} group {} props '{}' mtl {} obj {} ref {} children {} tm {} {}",
                       n.GetName(), n.IsNodeHidden(), n.IsGroupHead(), n.GetUserPropBuffer(),
                       n.GetMtl() != nullptr, n.EvalWorldState(0).obj != nullptr, n.GetObjectRef() != nullptr,
                       n.NumberOfChildren(), n.GetNodeTM(0).IsIdentity(), n.GetObjectTM(0).IsIdentity());
}

TEST(SceneDocument, OmittedFieldsTakeTheHostDefaults) {
    auto scene = scene::parseScene(R"({"nodes": [{}]})");
    EXPECT_EQ(scene->filePath, "");
    EXPECT_EQ(scene->time, 0);
    EXPECT_EQ(scene->ticksPerFrame, 160);
    host::INode& root = scene->root;
    EXPECT_TRUE(root.IsRootNode());
    EXPECT_EQ(root.GetName(), "Scene Root");
    EXPECT_EQ(root.EvalWorldState(0).obj, nullptr);
    ASSERT_EQ(root.NumberOfChildren(), 1);
    EXPECT_EQ(root.GetChildNode(1), nullptr);
    EXPECT_EQ(root.GetChildNode(-1), nullptr);

    host::INode* node = root.GetChildNode(0);
    EXPECT_FALSE(node->IsRootNode());
    EXPECT_EQ(node->GetParentNode(), &root);
    EXPECT_EQ(describe(*node),
              "'' hidden false group false props '' mtl false obj false ref false children 0 tm true true");
}

TEST(SceneDocument, NodeFieldsAsGiven) {
    auto scene = scene::parseScene(R"({
        "$schema": "scene-format.schema.json",
        "filePath": "/scenes/Ship Hull.max", "time": 2400, "ticksPerFrame": 80, "rootName": "top",
        "nodes": [{"name": "Дверь", "hidden": true, "groupHead": true,
                   "userProps": "TYPE = \"renderable\"\r\n", "children": [{"name": "a"}, {"name": "b"}]}]})");
    EXPECT_EQ(scene->filePath, "/scenes/Ship Hull.max");
    EXPECT_EQ(scene->time, 2400);
    EXPECT_EQ(scene->ticksPerFrame, 80);
    EXPECT_EQ(scene->root.GetName(), "top");
    host::INode* node = scene->root.GetChildNode(0);
    EXPECT_EQ(describe(*node),
              "'Дверь' hidden true group true props 'TYPE = \"renderable\"\r\n' mtl false obj false ref "
              "false children 2 "
              "tm true true");
    ASSERT_EQ(node->NumberOfChildren(), 2);
    EXPECT_EQ(node->GetChildNode(1)->GetName(), "b");
    node->SetUserPropBuffer("x = 1");
    EXPECT_EQ(node->GetUserPropBuffer(), "x = 1");

    // Integers may carry an exponent or a zero fraction.
    auto written = scene::parseScene(R"({"time": -4.8e3, "ticksPerFrame": 160.0})");
    EXPECT_EQ(written->time, -4800);
    EXPECT_EQ(written->ticksPerFrame, 160);
}

TEST(SceneDocument, ObjectsBySuperClassAndClass) {
    auto scene = scene::parseScene(R"({"nodes": [
        {"object": {}},
        {"object": {"superClass": "0x10"}},
        {"object": {"class": ["0x1012", "0x0"]}},
        {"object": {"superClass": 64, "class": ["0xABCDEF01", 7]}},
        {"object": {"class": ["0x2013", 0], "box": {"min": [-1, -2, -3], "max": [1, 2, 3]}}},
        {"object": {"box": {"max": [1, 1, 1]}}},
        {"object": null}]})");
    auto object = [&](int i) { return scene->root.GetChildNode(i)->EvalWorldState(scene->time).obj; };

    EXPECT_EQ(object(0)->SuperClassID(), host::HELPER_CLASS_ID);
    EXPECT_EQ(object(0)->ClassID(), Class_ID(host::DUMMY_CLASS_ID, 0));
    auto* dummy = dynamic_cast<host::DummyObject*>(object(0));
    ASSERT_NE(dummy, nullptr);
    EXPECT_EQ(dummy->GetBox(), (host::Box3{{-5, -5, -5}, {5, 5, 5}}));

    EXPECT_EQ(object(1)->SuperClassID(), host::GEOMOBJECT_CLASS_ID);
    EXPECT_EQ(object(1)->ClassID(), Class_ID(host::TRIOBJ_CLASS_ID, 0));
    EXPECT_EQ(object(2)->SuperClassID(), host::LIGHT_CLASS_ID);
    EXPECT_EQ(object(2)->ClassID(), Class_ID(host::SPOT_LIGHT_CLASS_ID, 0));
    EXPECT_EQ(object(3)->SuperClassID(), host::SHAPE_CLASS_ID);
    EXPECT_EQ(object(3)->ClassID(), Class_ID(0xABCDEF01, 7));
    EXPECT_EQ(dynamic_cast<host::DummyObject*>(object(3)), nullptr);

    auto* point = dynamic_cast<host::DummyObject*>(object(4));
    ASSERT_NE(point, nullptr);
    EXPECT_EQ(point->ClassID(), Class_ID(host::POINTHELP_CLASS_ID, 0));
    EXPECT_EQ(point->GetBox(), (host::Box3{{-1, -2, -3}, {1, 2, 3}}));
    EXPECT_EQ(dynamic_cast<host::DummyObject*>(object(5))->GetBox(), (host::Box3{{-5, -5, -5}, {1, 1, 1}}));
    EXPECT_EQ(object(6), nullptr);
    EXPECT_EQ(scene->root.GetChildNode(0)->GetObjectRef(), object(0));
    EXPECT_EQ(object(0)->GetInterface(host::I_SKIN), nullptr);
}

TEST(SceneDocument, MaterialsAndTheirAttributes) {
    auto scene = scene::parseScene(R"({
        "nodes": [{"material": 2}, {"material": 2}, {"material": null}],
        "materials": [
            {"name": "Hull", "attributes": [{"class": ["0x7CB6596", "0x7E112E78"], "name": "nq"},
                                            {"class": [1, 2]}]},
            {},
            {"name": "Multi", "class": ["0x200", "0x0"], "subMaterials": [0, null, 1]}]})");
    host::Mtl* multi = scene->root.GetChildNode(0)->GetMtl();
    ASSERT_NE(multi, nullptr);
    EXPECT_EQ(scene->root.GetChildNode(1)->GetMtl(), multi);  // shared, not copied
    EXPECT_EQ(scene->root.GetChildNode(2)->GetMtl(), nullptr);
    EXPECT_EQ(multi->GetName(), "Multi");
    EXPECT_EQ(multi->ClassID(), Class_ID(host::MULTI_CLASS_ID, 0));
    EXPECT_EQ(multi->SuperClassID(), host::MATERIAL_CLASS_ID);
    ASSERT_EQ(multi->NumSubMtls(), 3);
    EXPECT_EQ(multi->GetSubMtl(1), nullptr);
    EXPECT_EQ(multi->GetSubMtl(3), nullptr);
    EXPECT_EQ(multi->GetCustAttribContainer(), nullptr);

    host::Mtl* hull = multi->GetSubMtl(0);
    EXPECT_EQ(hull->GetName(), "Hull");
    EXPECT_EQ(hull->ClassID(), Class_ID(host::DMTL_CLASS_ID, 0));
    host::ICustAttribContainer* attributes = hull->GetCustAttribContainer();
    ASSERT_NE(attributes, nullptr);
    ASSERT_EQ(attributes->GetNumCustAttribs(), 2);
    EXPECT_EQ(attributes->GetCustAttrib(0)->ClassID(), Class_ID(0x07CB6596, 0x7E112E78));
    EXPECT_EQ(attributes->GetCustAttrib(0)->GetName(), "nq");
    EXPECT_EQ(attributes->GetCustAttrib(1)->GetName(), "");
    EXPECT_EQ(attributes->GetCustAttrib(2), nullptr);

    host::Mtl* plain = multi->GetSubMtl(2);
    EXPECT_EQ(plain->GetName(), "");
    EXPECT_EQ(plain->NumSubMtls(), 0);
}

TEST(SceneDocument, LoadedFromAFile) {
    auto scene = scene::loadScene(NQ_SOURCE_DIR "/tests/scenes/helpers.json");
    EXPECT_EQ(scene->filePath, "/scenes/helpers.max");
    ASSERT_GT(scene->root.NumberOfChildren(), 0);
}

// The example of the format's documentation stays a valid document.
TEST(SceneDocument, DocumentationExampleLoads) {
    std::ifstream in(NQ_SOURCE_DIR "/docs/scene-format.md");
    std::stringstream text;
    text << in.rdbuf();
    std::string doc = text.str();
    std::size_t start = doc.find("```json\n");
    ASSERT_NE(start, std::string::npos);
    start += 8;
    std::size_t end = doc.find("```", start);
    auto scene = scene::parseScene(doc.substr(start, end - start));
    ASSERT_EQ(scene->root.NumberOfChildren(), 3);
    EXPECT_EQ(scene->root.GetChildNode(1)->GetChildNode(0)->GetName(), "hook");
}

}  // namespace
