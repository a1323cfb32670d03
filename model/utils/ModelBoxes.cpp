#include "model/utils/ModelBoxes.h"

#include <unordered_map>
#include <vector>

#include "model/BakeTransform.h"
#include "model/BaseMeshRenderNode.h"
#include "model/IModelArguments.h"
#include "model/ShellNode.h"
#include "model/SkinData.h"

namespace model::utils {

namespace {

// World matrices of tree nodes at rest, each computed once.
class WorldMatrices {
public:
    const nq::Matrixd* of(const Node* node) {
        if (!node) {
            return nullptr;
        }
        auto [it, added] = cache_.try_emplace(node);
        if (added) {
            node->worldTransform(arguments_, it->second);
        }
        return &it->second;
    }

private:
    DummyArguments arguments_;
    std::unordered_map<const Node*, nq::Matrixd> cache_;
};

void expandByVertices(Box& box, const BaseNode& user, const Vertices& vertices, WorldMatrices& world) {
    const VertexAttribute* position = vertices.findAttribute(POSITION0);
    if (!position || position->size < 3) {
        return;
    }
    const std::size_t stride = static_cast<std::size_t>(position->size);
    const std::size_t count = position->data.size() / stride;
    // The matrix of each link, looked up when a vertex first names it.
    const std::uint32_t links = user.linkCount();
    std::vector<const nq::Matrixd*> matrices(links);
    std::vector<std::uint8_t> looked(links, 0);
    for (std::size_t v = 0; v < count; ++v) {
        const std::uint32_t tag = stride >= 4 ? parentTagOf(position->data[v * stride + 3]) : 0;
        if (tag >= links) {
            continue;
        }
        if (!looked[tag]) {
            looked[tag] = 1;
            matrices[tag] = world.of(user.link(tag).get());
        }
        const nq::Matrixd* m = matrices[tag];
        if (!m) {
            continue;
        }
        const float* p = &position->data[v * stride];
        osg::Vec3f out;
        for (int j = 0; j < 3; ++j) {
            out[j] =
                static_cast<float>(p[0] * (*m)(0, j) + p[1] * (*m)(1, j) + p[2] * (*m)(2, j) + (*m)(3, j));
        }
        box.expand(out);
    }
}

}  // namespace

Box computeBoundingBox(const RootNode& root) {
    Box box;
    WorldMatrices world;
    for (const Ptr<BaseRenderNode>& node : root.renderNodes()) {
        const auto* mesh = dynamic_cast<const BaseMeshRenderNode*>(node.get());
        if (mesh && !dynamic_cast<const SkinData*>(mesh)) {
            expandByVertices(box, *mesh, mesh->vertices, world);
        }
    }
    for (const Ptr<BaseShellNode>& node : root.shellNodes()) {
        const auto* shell = dynamic_cast<const ShellNode*>(node.get());
        if (shell && !dynamic_cast<const SkinData*>(shell)) {
            expandByVertices(box, *shell, shell->vertices, world);
        }
    }
    return box;
}

Box computeLightBox(const RootNode& root) {
    Box box;
    WorldMatrices world;
    for (const Ptr<LightNode>& light : root.lightNodes()) {
        for (std::uint32_t i = 0; i < light->linkCount(); ++i) {
            if (const nq::Matrixd* m = world.of(light->link(i).get())) {
                box.expand(osg::Vec3f{{static_cast<float>((*m)(3, 0)), static_cast<float>((*m)(3, 1)),
                                       static_cast<float>((*m)(3, 2))}});
            }
        }
    }
    return box;
}

}  // namespace model::utils
