#include "model/RenderNode.h"

#include "model/BakeTransform.h"
#include "model/Node.h"

namespace model {

bool RenderNode::applyTransform(std::uint32_t link, const nq::Matrixd& m) {
    checkLink(link, links.size());
    return bakeTransform(vertices, link, m);
}

void RenderNode::forEachArgument(const std::function<void(std::uint32_t)>& f) const {
    BaseNode::forEachArgument(f);
    for (const RenderLink& l : links) {
        if (l.argument != kNoArgument) {
            f(l.argument);
        }
    }
}

void RenderNode::setMesh(std::vector<RenderLink> parents, Indices newIndices, Vertices newVertices) {
    links = std::move(parents);
    indices = std::move(newIndices);
    vertices = std::move(newVertices);
}

}  // namespace model
