#include "io/GoldenModels.h"

#include "model/AnimatedFakeLights.h"
#include "model/AnimatedProperty.h"
#include "model/ArgAnimatedBone.h"
#include "model/ArgAnimationNode.h"
#include "model/ArgVisibilityNode.h"
#include "model/BillboardNode.h"
#include "model/Bone.h"
#include "model/Connector.h"
#include "model/FakeSpotLights3Node.h"
#include "model/LightNode.h"
#include "model/LodNode.h"
#include "model/NodeCreators.h"
#include "model/NumberNode.h"
#include "model/PropertiesSet.h"
#include "model/PropertyCreators.h"
#include "model/RenderNode.h"
#include "model/SegmentsNode.h"
#include "model/ShellSkinNode.h"
#include "model/SkinNode.h"
#include "model/TmpNumberRoot.h"

namespace golden {

using namespace model;

namespace {

template <class T>
Ptr<T> make(const char* className, const char* name) {
    Ptr<T> node = createNodeAs<T>(className);
    node->name = name;
    return node;
}

Vertices positions(int count, int normals) {
    Vertices v;
    std::vector<float> pos, nrm;
    for (int i = 0; i < count; ++i) {
        pos.insert(pos.end(), {float(i), float(i) * 0.5f, -float(i)});
        nrm.insert(nrm.end(), {0.0f, 1.0f, 0.0f});
    }
    v.setAttribute(POSITION0, 3, pos);
    if (normals) {
        v.setAttribute(NORMAL0, 3, nrm);
    }
    return v;
}

Indices triangles(std::uint32_t vertexCount) {
    std::vector<std::uint32_t> idx;
    for (std::uint32_t i = 0; i + 2 < vertexCount; i += 3) {
        idx.insert(idx.end(), {i, i + 1, i + 2});
    }
    return Indices(5, idx);
}

}  // namespace

GoldenModel treeNodesModel() {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    root->name = "tree_nodes";
    Ptr<Node> top = createNode("top");
    root->setRootNode(top);

    top->properties.push_back(createFloatProperty("f", 1.5f));
    top->properties.push_back(createUIntProperty("u", 7));
    top->properties.push_back(createVec2fProperty("v2", osg::Vec2f{{1, 2}}));
    top->properties.push_back(createVec3fProperty("v3", osg::Vec3f{{1, 2, 3}}));
    top->properties.push_back(createVec4fProperty("v4", osg::Vec4f{{1, 2, 3, 4}}));
    top->properties.push_back(createStringProperty("s", "text \xC3\xA4"));
    top->properties.push_back(createArgumentProperty("arg", 9));
    top->properties.push_back(
        createAnimatedProperty<AnimatedFloatProperty>("af", 1, {{0.0, 1.0f}, {1.0, 2.0f}}));
    top->properties.push_back(
        createAnimatedProperty<AnimatedVec2fProperty>("av2", 2, {{0.5, osg::Vec2f{{1, 2}}}}));
    top->properties.push_back(
        createAnimatedProperty<AnimatedVec3fProperty>("av3", 3, {{0.5, osg::Vec3f{{1, 2, 3}}}}));
    top->properties.push_back(
        createAnimatedProperty<AnimatedVec4fProperty>("av4", 4, {{0.5, osg::Vec4f{{1, 2, 3, 4}}}}));

    Ptr<TransformNode> xf = createTransformNode("xf", nq::translateMatrix({{1, 2, 3}}));
    top->insert(nullptr, xf);

    auto bb = make<BillboardNode>("model::BillboardNode", "bb");
    bb->billboardType = 1;
    bb->billboardAxis = 2;
    bb->billboardOffset = nq::Vec3d{{0, 1, 0}};
    xf->insert(nullptr, bb);

    auto bone = make<Bone>("model::Bone", "bone");
    bone->boneMatrix = nq::scaleMatrix({{2, 2, 2}});
    xf->insert(nullptr, bone);

    auto lod = make<LodNode>("model::LodNode", "lod");
    lod->ranges = {{0.0, 100.0}, {100.0, 1000.0}};
    lod->insert(nullptr, createNode("lod0"));
    lod->insert(nullptr, createNode("lod1"));
    top->insert(nullptr, lod);

    auto vis = make<ArgVisibilityNode>("model::ArgVisibilityNode", "vis");
    vis->entries.push_back(VisibilityEntry{5, {{0.0, 0.5}, {0.75, 1.0}}});
    top->insert(nullptr, vis);

    auto posOnly = make<ArgAnimationNode>("model::ArgAnimationNode", "posOnly");
    posOnly->positionChannels.push_back(
        PositionChannel{1, {{0.0, nq::Vec3d{{0, 0, 0}}}, {1.0, nq::Vec3d{{1, 0, 0}}}}});
    vis->insert(nullptr, posOnly);
    auto rotOnly = make<ArgAnimationNode>("model::ArgAnimationNode", "rotOnly");
    rotOnly->rotationChannels.push_back(RotationChannel{2, {{0.0, nq::Quatd{{0, 0, 0, 1}}}}});
    vis->insert(nullptr, rotOnly);
    auto scaleOnly = make<ArgAnimationNode>("model::ArgAnimationNode", "scaleOnly");
    scaleOnly->scaleChannels.push_back(ScaleChannel{
        3, {{0.0, nq::Quatd{{0, 0, 0, 1}}}}, {{0.0, nq::Vec3d{{1, 1, 1}}}, {1.0, nq::Vec3d{{2, 2, 2}}}}});
    vis->insert(nullptr, scaleOnly);
    auto mixed = make<ArgAnimationNode>("model::ArgAnimationNode", "mixed");
    mixed->positionChannels.push_back(PositionChannel{1, {{0.0, nq::Vec3d{{0, 1, 0}}}}});
    mixed->rotationChannels.push_back(RotationChannel{6, {{0.25, nq::Quatd{{0, 0.7071, 0, 0.7071}}}}});
    mixed->basePosition = nq::Vec3d{{0.5, 0, 0}};
    vis->insert(nullptr, mixed);
    auto abone = make<ArgAnimatedBone>("model::ArgAnimatedBone", "abone");
    abone->positionChannels.push_back(PositionChannel{8, {{0.0, nq::Vec3d{{0, 0, 1}}}}});
    abone->boneMatrix = nq::translateMatrix({{0, 0, -1}});
    mixed->insert(nullptr, abone);

    top->insert(nullptr, make<TmpNumberRoot>("model::TmpNumberRoot", "numroot"));
    return {"tree_nodes.nqf", root};
}

GoldenModel listNodesModel() {
    Ptr<RootNode> root = createNodeAs<RootNode>("model::RootNode");
    root->name = "list_nodes";
    root->boundingBox.expand(osg::Vec3f{{-1, -2, -3}});
    root->boundingBox.expand(osg::Vec3f{{1, 2, 3}});
    Ptr<Node> top = createNode("top");
    Ptr<Node> a = createNode("a");
    Ptr<Node> b = createNode("b");
    root->setRootNode(top);
    top->insert(nullptr, a);
    top->insert(nullptr, b);

    auto* plain = new PropertiesSet();
    plain->name = "plain";
    plain->materialName = "def_material";
    MaterialPtr plainMaterial(plain);
    auto* rich = new PropertiesSet();
    rich->name = "rich";
    rich->materialName = "glass_material";
    rich->blending = 1;
    rich->decal = 3;
    rich->billboard = 1;
    rich->billboardType = 2;
    rich->textures[0].name = "Diffuse.DDS";
    rich->textures[0].texCoordChannel = 0;
    rich->textures[13].name = "detail.dds";
    rich->textures[13].texCoordChannel = 1;
    rich->textureChannels[0] = 0;
    rich->vertexFormat[0] = 3;
    rich->vertexFormat[1] = 3;
    rich->uniforms.push_back(createVec4fProperty("diffuseValue", osg::Vec4f{{1, 1, 1, 1}}));
    rich->uniforms.push_back(
        createAnimatedProperty<AnimatedFloatProperty>("selfIllumination", 4, {{0.0, 0.0f}, {1.0, 1.0f}}));
    MaterialPtr richMaterial(rich);

    auto connector = make<Connector>("model::Connector", "hook");
    connector->controlNode = a;
    connector->properties.push_back(createStringProperty("kind", "attach"));
    root->addConnector(connector);

    auto light = make<LightNode>("model::LightNode", "lamp");
    light->controlNode = b;
    light->lightFlag = LightNode::kSpot;
    light->color = createVec3fProperty("Color", osg::Vec3f{{1, 0.9f, 0.8f}});
    light->brightness = createAnimatedProperty<AnimatedFloatProperty>("Brightness", 2, {{0.0, 1.0f}});
    light->phi = createFloatProperty("Phi", 0.5f);
    light->theta = createFloatProperty("Theta", 0.7f);
    light->distance = createFloatProperty("Distance", 30.0f);
    light->setDensityFactor(createFloatProperty("DensityFactor", 0.25f));
    light->setLightKind(1);
    light->texture.name = "Spot.dds";
    root->addLightNode(light);

    auto shell = make<ShellNode>("model::ShellNode", "hull");
    shell->controlNode = a;
    shell->vertices = positions(3, 0);
    shell->indices = triangles(3);
    root->addShellNode(shell);

    auto shellSkin = make<ShellSkinNode>("model::ShellSkinNode", "hullSkin");
    shellSkin->bones = {top, a};
    shellSkin->argument = 1;
    shellSkin->version = 1;
    shellSkin->box.expand(osg::Vec3f{{0, 0, 0}});
    shellSkin->box.expand(osg::Vec3f{{1, 1, 1}});
    shellSkin->vertices = positions(6, 0);
    shellSkin->indices = triangles(6);
    root->addShellNode(shellSkin);

    auto segments = make<SegmentsNode>("model::SegmentsNode", "rail");
    segments->controlNode = b;
    segments->segments.push_back(Segment{osg::Vec3f{{0, 0, 0}}, osg::Vec3f{{1, 0, 0}}});
    root->addShellNode(segments);

    auto render = make<RenderNode>("model::RenderNode", "mesh");
    render->links.push_back(RenderLink{a, 0xFFFFFFFFu});
    render->material = plainMaterial;
    render->vertices = positions(300, 1);  // more than 255 vertices: two-byte indices
    render->indices = triangles(300);
    root->addRenderNode(render);

    auto multi = make<RenderNode>("model::RenderNode", "multi");
    multi->links.push_back(RenderLink{a, 3});
    multi->links.push_back(RenderLink{b, 0xFFFFFFFFu});
    multi->material = richMaterial;
    multi->version = 1;
    multi->renderOption = 5;
    multi->vertices = positions(3, 1);
    multi->indices = triangles(3);
    root->addRenderNode(multi);

    auto number = make<NumberNode>("model::NumberNode", "digits");
    number->links.push_back(RenderLink{b, 7});
    number->material = plainMaterial;
    number->vertices = positions(3, 1);
    number->indices = triangles(3);
    number->entries.push_back({NumberEntry{{1, 2, 3, 4}}, NumberEntry{{5, 6, 7, 8}}});
    root->addRenderNode(number);

    auto skin = make<SkinNode>("model::SkinNode", "skin");
    skin->bones = {top, b};
    skin->argument = 0xFFFFFFFFu;
    skin->version = 1;
    skin->box.expand(osg::Vec3f{{-1, -1, -1}});
    skin->box.expand(osg::Vec3f{{1, 1, 1}});
    skin->material = plainMaterial;
    skin->vertices = positions(3, 1);
    skin->indices = triangles(3);
    root->addRenderNode(skin);

    auto omni = make<FakeOmniLightsNode>("model::FakeOmniLightsNode", "omni");
    omni->material = richMaterial;
    omni->links.push_back(a);
    FakeOmniLight o;
    o.position = nq::Vec3d{{1, 2, 3}};
    o.texRT = osg::Vec2f{{1, 1}};
    o.size = 0.5f;
    omni->lights.push_back(o);
    root->addRenderNode(omni);

    auto spots = make<FakeSpotLightsNode>("model::FakeSpotLightsNode", "spots");
    spots->material = richMaterial;
    spots->version = 2;
    spots->links.push_back(FakeSpotLink{b, osg::Vec3f{{0, 0, 1}}});
    FakeSpotLight s;
    s.position = nq::Vec3d{{0, 1, 0}};
    s.size = 2.0f;
    s.flags = 1;
    spots->lights.push_back(s);
    spots->directions.push_back(osg::Vec3f{{0, -1, 0}});
    root->addRenderNode(spots);

    auto spots3 = make<FakeSpotLights3Node>("model::FakeSpotLights3Node", "spots3");
    spots3->material = plainMaterial;
    spots3->links.push_back(a);
    spots3->lightData = positions(2, 0);
    root->addRenderNode(spots3);

    auto animOmni = make<AnimatedFakeOmniLightsNode>("model::AnimatedFakeOmniLightsNode", "animOmni");
    animOmni->material = plainMaterial;
    animOmni->links.push_back(b);
    animOmni->lights.push_back(o);
    animOmni->argument = 11;
    animOmni->animationData.assign(128, 0.25f);
    root->addRenderNode(animOmni);

    auto animSpots = make<AnimatedFakeSpotLightsNode>("model::AnimatedFakeSpotLightsNode", "animSpots");
    animSpots->material = plainMaterial;
    animSpots->links.push_back(FakeSpotLink{a, osg::Vec3f{{1, 0, 0}}});
    animSpots->lights.push_back(s);
    animSpots->argument = 12;
    animSpots->animationData.assign(128, 0.5f);
    root->addRenderNode(animSpots);
    return {"list_nodes.nqf", root};
}

}  // namespace golden
