#pragma once
// Builders for the tests of the vertex and merging passes, a seeded generator of random scenes,
// and a text dump of a model's lists by which two runs are compared.

#include <bit>
#include <cstdint>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include <fmt/format.h>

#include "core/ExtException.h"
#include "model/AnimatedFakeLights.h"
#include "model/ArgVisibilityNode.h"
#include "model/BillboardNode.h"
#include "model/FakeOmniLightsNode.h"
#include "model/FakeSpotLightsNode.h"
#include "model/LodNode.h"
#include "model/NodeCreators.h"
#include "model/NumberNode.h"
#include "model/PropertiesSet.h"
#include "model/PropertyCreators.h"
#include "model/RenderNode.h"
#include "model/RootNode.h"
#include "model/ShellNode.h"
#include "model/SkinNode.h"

namespace mergetest {

using namespace model;
using MaterialRef = nq::Ptr<PropertiesSet>;

// A material for meshes of POSITION0 (4 floats) and NORMAL0.
inline MaterialRef makeMaterial(const std::string& name, std::uint8_t blending = 0) {
    MaterialRef m(new PropertiesSet());
    m->name = name;
    m->materialName = "def_material";
    m->blending = blending;
    m->vertexFormat[POSITION0] = 4;
    m->vertexFormat[NORMAL0] = 3;
    return m;
}

inline MaterialRef copyMaterial(const MaterialRef& m) {
    return MaterialRef(new PropertiesSet(*m));
}

template <class T>
Ptr<T> makeTreeNode(const Ptr<Node>& parent, const std::string& name = {}) {
    Ptr<T> node = createNodeAs<T>(nodeTypeName(T().nodeType()));
    node->name = name;
    if (parent) {
        parent->append(node);
    }
    return node;
}

// Vertices of POSITION0 with four floats: x, y, z and the parent tag.
inline Vertices taggedPositions(const std::vector<std::array<float, 4>>& points) {
    Vertices v;
    std::vector<float> data;
    for (const auto& p : points) {
        data.insert(data.end(), p.begin(), p.end());
    }
    v.setAttribute(POSITION0, 4, data);
    return v;
}

// Vertices with POSITION0 of four floats (the fourth 0) and NORMAL0 (0, 1, 0).
inline Vertices meshVertices(const std::vector<std::array<float, 3>>& points) {
    Vertices v;
    std::vector<float> positions;
    std::vector<float> normals;
    for (const auto& p : points) {
        positions.insert(positions.end(), {p[0], p[1], p[2], 0.0f});
        normals.insert(normals.end(), {0.0f, 1.0f, 0.0f});
    }
    v.setAttribute(POSITION0, 4, positions);
    v.setAttribute(NORMAL0, 3, normals);
    return v;
}

// A triangle on a tree node: vertices at offset, offset + x, offset + y.
template <class T = RenderNode>
Ptr<T> makeTriangle(const Ptr<Node>& parent, const MaterialPtr& material, float offset = 0,
                    const std::string& name = {}) {
    Ptr<T> node = createNodeAs<T>(nodeTypeName(T().nodeType()));
    node->name = name;
    node->material = material;
    node->links.push_back(RenderLink{parent});
    node->vertices = meshVertices({{offset, 0, 0}, {offset + 1, 0, 0}, {offset, 1, 0}});
    node->indices = Indices(kTriangleList, {0, 1, 2});
    return node;
}

struct Scene {
    Ptr<RootNode> root;
    std::vector<MaterialRef> materials;
};

inline Scene makeScene() {
    Scene s;
    s.root = createNodeAs<RootNode>("model::RootNode");
    s.root->setRootNode(createNode("top"));
    return s;
}

// A triangle of makeTriangle, listed in the scene.
template <class T = RenderNode>
Ptr<T> addTriangle(Scene& s, const Ptr<Node>& parent, const MaterialPtr& material, float offset = 0,
                   const std::string& name = {}) {
    Ptr<T> node = makeTriangle<T>(parent, material, offset, name);
    s.root->addRenderNode(node);
    return node;
}

// The message of the failure that f throws, or "no exception".
template <class F>
std::string failureOf(F&& f) {
    try {
        f();
    } catch (const nq::ExtException& e) {
        return e.message();
    }
    return "no exception";
}

// The text f returns, or the message of the failure it throws: two runs compare as one string.
template <class F>
std::string outcomeOf(F&& f) {
    try {
        return f();
    } catch (const nq::ExtException& e) {
        return e.message();
    }
}

// A random scene: a tree of plain, transform, visibility, level-of-detail and billboard nodes;
// render nodes of every kind that merges and of two that do not, with materials from a pool that
// holds equal copies and near-equal uniforms, and user properties from a pool with values just
// inside and just outside the tolerance, repeated names and all property classes.
Scene randomScene(std::uint32_t seed, int renderNodes = 60, int treeNodes = 25);

// The lists of a model and what their nodes hold, one line per node, with tree nodes and
// materials by number, so that two models built alike compare as text.
std::string dumpModel(const RootNode& root, const std::vector<MaterialRef>& materials);

}  // namespace mergetest
