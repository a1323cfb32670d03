#include "model/utils/NormalSmoother.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>

#include <fmt/format.h>

#include "core/ExtException.h"
#include "model/ArgAnimationNode.h"

namespace model::utils {

namespace {

double length(const nq::Vec3d& v) {
    return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
}

// v x the upper 3 by 3 of m.
nq::Vec3d times3x3(const nq::Vec3d& v, const nq::Matrixd& m) {
    return m.transformVector(v);
}

nq::Vec3d normalised(const nq::Vec3d& v) {
    double l = length(v);
    if (!(l > 0.0)) {
        return {};
    }
    double scale = 1.0 / l;
    return {{v[0] * scale, v[1] * scale, v[2] * scale}};
}

nq::Matrixd transposed(const nq::Matrixd& m) {
    nq::Matrixd t;
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            t(i, j) = m(j, i);
        }
    }
    return t;
}

const VertexAttribute* attributeOf(const Vertices& v, VertexSemantic semantic) {
    const VertexAttribute* a = v.findAttribute(semantic);
    return a && a->size >= 3 ? a : nullptr;
}

}  // namespace

std::uint64_t smoothKeyOf(const BaseMeshRenderNode& node) {
    if (node.nodeType() == NodeType::SkinNode) {
        return 1;
    }
    Ptr<Node> link = node.linkCount() > 0 ? node.link(0) : Ptr<Node>();
    std::uint64_t key = 0;
    if (link) {
        link->visitAncestors([&](const Ptr<Node>& n) {
            if (dynamic_cast<const ArgAnimationNode*>(n.get())) {
                key = reinterpret_cast<std::uintptr_t>(n.get());
            }
            return key == 0;
        });
    }
    return key;
}

nq::Matrixd nodeWorldTransform(const BaseMeshRenderNode& node) {
    nq::Matrixd world = nq::Matrixd::identity();
    if (node.linkCount() > 0) {
        if (Ptr<Node> link = node.link(0)) {
            link->worldTransform(DummyArguments(), world);
        }
    }
    return world;
}

bool boxesMeet(const SmoothNode& a, const SmoothNode& b) {
    for (int axis = 0; axis < 3; ++axis) {
        if (std::max(a.boxMin[axis], b.boxMin[axis]) > std::min(a.boxMax[axis], b.boxMax[axis])) {
            return false;
        }
    }
    return true;
}

void applySmoothClusters(std::span<const SmoothNode> nodes, std::span<const SmoothCluster> clusters) {
    auto vertexOf = [&](SmoothVertexRef r) -> const SmoothVertex& {
        return nodes[r.node].vertices[r.vertex];
    };
    auto store = [&](SmoothVertexRef r, const nq::Vec3d& worldNormal) {
        const SmoothNode& n = nodes[r.node];
        nq::Vec3d local = normalised(times3x3(worldNormal, n.toNode));
        VertexAttribute& normals = n.node->vertices.attribute(NORMAL0);
        std::size_t at = static_cast<std::size_t>(vertexOf(r).index) * static_cast<std::size_t>(normals.size);
        for (int k = 0; k < 3; ++k) {
            normals.data.at(at + static_cast<std::size_t>(k)) = static_cast<float>(local[k]);
        }
    };
    for (const SmoothCluster& c : clusters) {
        nq::Vec3d sum = vertexOf(c.head).normal;
        for (SmoothVertexRef m : c.members) {
            const nq::Vec3d& n = vertexOf(m).normal;
            sum = {{sum[0] + n[0], sum[1] + n[1], sum[2] + n[2]}};
        }
        double l = length(sum);
        nq::Vec3d unit{};
        if (l > 0.0) {
            double scale = 1.0 / l;
            unit = {{sum[0] * scale, sum[1] * scale, sum[2] * scale}};
        }
        store(c.head, unit);
        for (SmoothVertexRef m : c.members) {
            store(m, unit);
        }
    }
}

void NormalSmoother::collect(const Ptr<BaseMeshRenderNode>& node, std::span<const std::uint32_t> groups) {
    collect(node, nodeWorldTransform(*node), groups);
}

void NormalSmoother::collect(const Ptr<BaseMeshRenderNode>& node, const nq::Matrixd& world,
                             std::span<const std::uint32_t> groups) {
    const VertexAttribute* positions = attributeOf(node->vertices, POSITION0);
    const VertexAttribute* normals = attributeOf(node->vertices, NORMAL0);
    if (!positions || !normals) {
        return;
    }
    const std::size_t count = node->vertices.vertexCount();
    if (groups.size() != count) {
        throw nq::ExtException(
            fmt::format("Smoothing groups for {} vertices given to node '{}' of {} vertices.", groups.size(),
                        node->name, count));
    }
    const auto pSize = static_cast<std::size_t>(positions->size);
    const auto nSize = static_cast<std::size_t>(normals->size);
    if (positions->data.size() < count * pSize || normals->data.size() < count * nSize) {
        throw nq::ExtException(fmt::format("Node '{}' does not hold whole vertices.", node->name));
    }
    const nq::Matrixd normalMatrix = transposed(world.inverse());
    SmoothNode out;
    out.node = node;
    constexpr double kInf = std::numeric_limits<double>::infinity();
    out.boxMin = {{kInf, kInf, kInf}};
    out.boxMax = {{-kInf, -kInf, -kInf}};
    out.vertices.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const float* p = &positions->data[i * pSize];
        const float* n = &normals->data[i * nSize];
        SmoothVertex v;
        v.position = world.transformPoint(nq::Vec3d{{p[0], p[1], p[2]}});
        v.normal = normalised(times3x3(nq::Vec3d{{n[0], n[1], n[2]}}, normalMatrix));
        v.groups = groups[i];
        v.index = static_cast<std::uint32_t>(i);
        for (int k = 0; k < 3; ++k) {
            out.boxMin[k] = std::min(out.boxMin[k], v.position[k]);
            out.boxMax[k] = std::max(out.boxMax[k], v.position[k]);
        }
        out.groupMask |= v.groups;
        out.vertices.push_back(v);
    }
    nodes_.push_back(std::move(out));
}

void NormalSmoother::gather() {
    std::erase_if(nodes_, [](const SmoothNode& n) { return n.node->root == nullptr; });
    for (SmoothNode& n : nodes_) {
        // The passes between collect and gather keep every vertex in its place; a node that lost
        // vertices or its normals would have the clusters' normals written past its end.
        const VertexAttribute* normals = attributeOf(n.node->vertices, NORMAL0);
        const std::size_t count = n.node->vertices.vertexCount();
        if (!normals || count != n.vertices.size() ||
            normals->data.size() < count * static_cast<std::size_t>(normals->size)) {
            throw nq::ExtException(fmt::format(
                "Node '{}' changed its vertices between collecting and smoothing", n.node->name));
        }
        n.smoothKey = smoothKeyOf(*n.node);
        n.toNode = transposed(nodeWorldTransform(*n.node));
    }
    clusters_ = gatherSmoothClusters(nodes_);
}

void NormalSmoother::apply() {
    applySmoothClusters(nodes_, clusters_);
}

std::vector<std::string> NormalSmoother::zeroNormalNodes() const {
    std::vector<std::string> names;
    std::unordered_set<const BaseMeshRenderNode*> named;
    for (const SmoothNode& n : nodes_) {
        const VertexAttribute* normals = attributeOf(n.node->vertices, NORMAL0);
        if (!normals || named.count(n.node.get())) {
            continue;
        }
        const auto size = static_cast<std::size_t>(normals->size);
        for (std::size_t i = 0; i + 2 < normals->data.size(); i += size) {
            if (normals->data[i] == 0.0f && normals->data[i + 1] == 0.0f && normals->data[i + 2] == 0.0f) {
                names.push_back(n.node->name);
                named.insert(n.node.get());
                break;
            }
        }
    }
    return names;
}

void NormalSmoother::reset() {
    nodes_.clear();
    clusters_.clear();
}

}  // namespace model::utils
