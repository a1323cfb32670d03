#include "utils/MergeTestSupport.h"

namespace mergetest {

namespace {

class Random {
public:
    explicit Random(std::uint32_t seed) : engine_(seed) {}
    int below(int n) { return std::uniform_int_distribution<int>(0, n - 1)(engine_); }
    bool chance(int percent) { return below(100) < percent; }
    template <class T>
    const T& pick(const std::vector<T>& v) {
        return v[static_cast<std::size_t>(below(static_cast<int>(v.size())))];
    }

private:
    std::mt19937 engine_;
};

PropertyList randomProperties(Random& r) {
    const int choice = r.below(12);
    if (choice == 8) {
        return {createArgumentProperty("arg", static_cast<std::uint32_t>(r.below(2)))};
    }
    // The second list is within the tolerance of the first, the third outside it; the seventh
    // repeats a name, so it equals the first as seen from its own side only.
    const std::vector<PropertyList> lists{
        {createFloatProperty("a", 1.0f)},
        {createFloatProperty("a", 1.0f + 6e-6f)},
        {createFloatProperty("a", 1.00003f)},
        {createProperty<UIntProperty>("b", 3u), createFloatProperty("a", 1.0f)},
        {createFloatProperty("a", 1.0f), createProperty<UIntProperty>("b", 3u)},
        {createProperty<StringProperty>("c", "x")},
        {createFloatProperty("a", 1.0f), createFloatProperty("a", 1.0f + 4e-6f)},
        {createProperty<Vec3fProperty>("v", osg::Vec3f{{0.5f, 0.0f, 2.0f}})}};
    return choice < 8 ? lists[static_cast<std::size_t>(choice)] : PropertyList{};
}

MaterialRef randomMaterial(int i) {
    MaterialRef m = makeMaterial(fmt::format("m{}", i % 4), i == 5 ? 1 : 0);
    if (i % 3 == 1) {
        m->uniforms.push_back(createFloatProperty("gloss", 0.5f + (i % 2 == 0 ? 5e-6f : 0.0f)));
    }
    if (i == 6 || i == 7) {
        m->vertexFormat[COLOR1] = 1;
    }
    return m;
}

Vertices randomMesh(Random& r, int count) {
    std::vector<std::array<float, 3>> points;
    for (int i = 0; i < count; ++i) {
        points.push_back({static_cast<float>(r.below(4)), static_cast<float>(r.below(4)), 0.5f * r.below(3)});
    }
    Vertices v = meshVertices(points);
    // Some vertices already carry a parent number.
    if (r.chance(20)) {
        v.attribute(POSITION0).data[3] = 1.0f;
    }
    return v;
}

template <class T>
void fillMesh(Random& r, T& node) {
    int count = 3 + r.below(4);
    node.vertices = randomMesh(r, count);
    int choice = r.below(20);
    std::uint32_t primitive = choice < 14 ? kTriangleList : choice < 17 ? kLineList : kTriangleStrip;
    std::vector<std::uint32_t> indices;
    int n = r.chance(5) ? 0 : (primitive == kLineList ? 2 : 3) * (1 + r.below(3));
    for (int i = 0; i < n; ++i) {
        indices.push_back(static_cast<std::uint32_t>(r.below(count)));
    }
    node.indices = Indices(primitive, indices);
}

template <class Light>
Light randomLight(Random& r, std::uint32_t parents) {
    Light l;
    l.position = nq::Vec3d{{static_cast<double>(r.below(5)), 0.0, 1.0}};
    l.size = 0.25f * static_cast<float>(1 + r.below(3));
    l.parent = parents == 0 ? 0 : static_cast<std::uint32_t>(r.below(static_cast<int>(parents)));
    return l;
}

}  // namespace

Scene randomScene(std::uint32_t seed, int renderNodes, int treeNodes) {
    Random r(seed);
    Scene s = makeScene();
    std::vector<Ptr<Node>> tree{s.root->rootNode()};
    for (int i = 0; i < treeNodes; ++i) {
        static const char* const kKinds[] = {"model::ArgVisibilityNode", "model::ArgVisibilityNode",
                                             "model::LodNode",           "model::LodNode",
                                             "model::BillboardNode",     "model::TransformNode"};
        Ptr<Node> parent = r.pick(tree);
        const int kind = r.below(10);
        Ptr<Node> node = createNodeAs<Node>(kind < 6 ? kKinds[kind] : "model::Node");
        node->name = fmt::format("t{}", i);
        parent->append(node);
        tree.push_back(node);
    }
    for (int i = 0; i < 8; ++i) {
        s.materials.push_back(randomMaterial(i));
    }
    // Equal copies, so that unification has work.
    s.materials.push_back(copyMaterial(s.materials[0]));
    s.materials.push_back(copyMaterial(s.materials[6]));

    for (int i = 0; i < renderNodes; ++i) {
        MaterialPtr material = r.pick(s.materials);
        auto parentLinks = [&](auto& links, auto makeLink) {
            int count = r.chance(6) ? 0 : r.chance(6) ? 2 : 1;
            for (int k = 0; k < count; ++k) {
                links.push_back(makeLink(r.chance(3) ? Ptr<Node>() : r.pick(tree)));
            }
        };
        Ptr<BaseRenderNode> node;
        int kind = r.below(20);
        if (kind < 11 || kind == 19) {
            Ptr<RenderNode> n = kind == 19 ? Ptr<RenderNode>(createNodeAs<NumberNode>("model::NumberNode"))
                                           : createNodeAs<RenderNode>("model::RenderNode");
            parentLinks(n->links, [](Ptr<Node> p) { return RenderLink{std::move(p)}; });
            fillMesh(r, *n);
            if (auto* number = dynamic_cast<NumberNode*>(n.get())) {
                number->entries.resize(n->links.size(),
                                       {NumberEntry{{1, 2, 3, static_cast<std::uint32_t>(i)}}});
            }
            node = n;
        } else if (kind < 14) {
            Ptr<FakeOmniLightsNode> n = createNodeAs<FakeOmniLightsNode>("model::FakeOmniLightsNode");
            parentLinks(n->links, [](Ptr<Node> p) { return p; });
            for (int k = r.below(3); k >= 0; --k) {
                n->lights.push_back(
                    randomLight<FakeOmniLight>(r, static_cast<std::uint32_t>(n->links.size())));
            }
            node = n;
        } else if (kind < 17) {
            Ptr<FakeSpotLightsNode> n = createNodeAs<FakeSpotLightsNode>("model::FakeSpotLightsNode");
            parentLinks(n->links, [](Ptr<Node> p) {
                return FakeSpotLink{std::move(p), osg::Vec3f{{0, 0, 1}}};
            });
            bool directions = r.chance(50);
            n->version = directions ? 2 : 0;
            for (int k = r.below(3); k >= 0; --k) {
                FakeSpotLight l = randomLight<FakeSpotLight>(r, static_cast<std::uint32_t>(n->links.size()));
                l.backTexLB =
                    osg::Vec2f{{r.chance(50) ? 0.0f : 6e-6f * static_cast<float>(r.below(3)), 0.0f}};
                n->lights.push_back(l);
                if (directions) {
                    n->directions.push_back(osg::Vec3f{{0, -1, 0}});
                }
            }
            node = n;
        } else if (kind == 17) {
            Ptr<SkinNode> n = createNodeAs<SkinNode>("model::SkinNode");
            n->bones.push_back(r.pick(tree));
            fillMesh(r, *n);
            node = n;
        } else {
            Ptr<AnimatedFakeOmniLightsNode> n =
                createNodeAs<AnimatedFakeOmniLightsNode>("model::AnimatedFakeOmniLightsNode");
            n->links.push_back(r.pick(tree));
            n->lights.push_back(randomLight<FakeOmniLight>(r, 1));
            node = n;
        }
        node->name = fmt::format("r{}", i);
        node->material = r.chance(2) ? MaterialPtr() : material;
        node->properties = randomProperties(r);
        s.root->addRenderNode(node);
    }
    // A shell that is empty, so that the shell list is cleaned too.
    Ptr<ShellNode> shell = createNodeAs<ShellNode>("model::ShellNode");
    shell->controlNode = tree.front();
    s.root->addShellNode(shell);
    return s;
}

namespace {

std::string bitsOf(const std::vector<float>& data) {
    std::string out;
    for (float f : data) {
        out += fmt::format("{:x} ", std::bit_cast<std::uint32_t>(f));
    }
    return out;
}

std::string meshText(const Vertices& v, const Indices& i) {
    std::string out = fmt::format(" prim {} idx", i.primitive);
    for (std::uint32_t x : i.indices) {
        out += fmt::format(" {}", x);
    }
    for (const auto& [semantic, attr] : v.attributes) {
        out += fmt::format(" {}:{}[{}]", static_cast<int>(semantic), attr.size, bitsOf(attr.data));
    }
    return out;
}

}  // namespace

std::string dumpModel(const RootNode& root, const std::vector<MaterialRef>& materials) {
    std::unordered_map<const Node*, int> treeNumber;
    int next = 0;
    if (root.rootNode()) {
        root.rootNode()->visit([&](const Ptr<Node>& n) {
            treeNumber[n.get()] = next++;
            return true;
        });
    }
    auto nodeText = [&](const Ptr<Node>& n) {
        auto it = treeNumber.find(n.get());
        return it == treeNumber.end() ? std::string(n ? "?" : "-") : std::to_string(it->second);
    };
    auto materialText = [&](const BaseMaterial* m) {
        for (std::size_t k = 0; k < materials.size(); ++k) {
            if (materials[k].get() == m) {
                return std::to_string(k);
            }
        }
        return std::string(m ? "?" : "-");
    };
    std::string out;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        out += fmt::format("{} '{}' v{} mat {} root {} props", nodeTypeName(node->nodeType()), node->name,
                           node->version, materialText(node->material.get()), node->root == &root);
        for (const Ptr<IProperty>& p : node->properties) {
            out += " " + (p ? p->toText() : std::string("null"));
        }
        if (const auto* r = dynamic_cast<const RenderNode*>(node.get())) {
            out += " links";
            for (const RenderLink& l : r->links) {
                out += fmt::format(" {}/{:x}", nodeText(l.node), l.argument);
            }
            out += meshText(r->vertices, r->indices);
            if (const auto* number = dynamic_cast<const NumberNode*>(node.get())) {
                for (const auto& list : number->entries) {
                    out += fmt::format(" entries {}", list.size());
                    for (const NumberEntry& e : list) {
                        out += fmt::format(" {}", e.words[3]);
                    }
                }
            }
        } else if (const auto* o = dynamic_cast<const FakeOmniLightsNode*>(node.get())) {
            out += " links";
            for (const Ptr<Node>& l : o->links) {
                out += " " + nodeText(l);
            }
            for (const FakeOmniLight& l : o->lights) {
                out += fmt::format(" light {} {} {}", l.position[0], l.size, l.parent);
            }
        } else if (const auto* sp = dynamic_cast<const FakeSpotLightsNode*>(node.get())) {
            out += " links";
            for (const FakeSpotLink& l : sp->links) {
                out += " " + nodeText(l.node);
            }
            for (const FakeSpotLight& l : sp->lights) {
                out += fmt::format(" light {} {} {} {}", l.position[0], l.size, l.parent, l.backTexLB[0]);
            }
            out += fmt::format(" directions {}", sp->directions.size());
        } else if (const auto* sk = dynamic_cast<const SkinNode*>(node.get())) {
            out += meshText(sk->vertices, sk->indices);
        }
        out += "\n";
    }
    for (const Ptr<BaseShellNode>& shell : root.shellNodes()) {
        out += fmt::format("shell {} '{}' on {}", nodeTypeName(shell->nodeType()), shell->name,
                           nodeText(shell->link(0)));
        if (const auto* s = dynamic_cast<const ShellNode*>(shell.get())) {
            out += meshText(s->vertices, s->indices);
        }
        out += "\n";
    }
    return out;
}

}  // namespace mergetest
