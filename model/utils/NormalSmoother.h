#pragma once
// Closes shading seams across render nodes: vertices of different nodes that meet in world space
// and share a smoothing group get one normal, the normalised sum of theirs.
//
// Order of use: collect each render node whose normals are to be smoothed, while its mesh is
// made; after the tree passes, gather, then apply; zeroNormalNodes names the nodes left with a
// normal of zero length. reset forgets everything.
//
// The tree passes between collect and gather bake transforms into vertices and move transforms
// about. They keep the world geometry, so the world copies taken at collect stay valid; only the
// way back into a node's own space changes, and gather takes it from the tree as it stands then.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "core/Math.h"
#include "model/BaseMeshRenderNode.h"

namespace model::utils {

// One vertex in world space.
struct SmoothVertex {
    nq::Vec3d position;
    // Of unit length, or zero.
    nq::Vec3d normal;
    std::uint32_t groups = 0;
    // The vertex's number in its render node.
    std::uint32_t index = 0;
};

// One collected render node.
struct SmoothNode {
    Ptr<BaseMeshRenderNode> node;
    // Takes a world normal back into the node's space: the transpose of the node's world
    // transform (normals go out through the inverse transpose). Only the upper 3 by 3 counts.
    // Set by gather from the node's place in the tree at that time.
    nq::Matrixd toNode;
    nq::Vec3d boxMin;
    nq::Vec3d boxMax;
    // The bitwise or of the groups of all vertices.
    std::uint32_t groupMask = 0;
    // Equal for nodes whose vertices may merge; see smoothKeyOf.
    std::uint64_t smoothKey = 0;
    std::vector<SmoothVertex> vertices;
};

// A vertex by its node's place in the collected list and its place in that node.
struct SmoothVertexRef {
    std::uint32_t node = 0;
    std::uint32_t vertex = 0;
    bool operator==(const SmoothVertexRef&) const = default;
};

struct SmoothCluster {
    SmoothVertexRef head;
    std::vector<SmoothVertexRef> members;
    bool operator==(const SmoothCluster&) const = default;
};

// The largest difference per axis, inclusive, at which two vertices still meet.
inline constexpr double kSmoothTolerance = 0.001;

// Vertices of two nodes merge only when their nodes move together: the key is the nearest tree
// node at or above the node's first link that is animated by arguments (its address), 1 for a
// skinned node, whose vertices follow bones, and 0 for a node that does not move.
std::uint64_t smoothKeyOf(const BaseMeshRenderNode& node);

// The world transform at rest (every argument 0) of the tree node that carries a render node:
// its first link, which for a skin is the node that holds the skin. Identity without a link.
nq::Matrixd nodeWorldTransform(const BaseMeshRenderNode& node);

// The boxes overlap or touch on all three axes.
bool boxesMeet(const SmoothNode& a, const SmoothNode& b);

// Groups share a bit, keys are equal, and each axis differs by at most kSmoothTolerance.
inline bool verticesMeet(const SmoothNode& na, const SmoothVertex& a, const SmoothNode& nb,
                         const SmoothVertex& b) {
    return (a.groups & b.groups) != 0 && na.smoothKey == nb.smoothKey &&
           std::fabs(a.position[0] - b.position[0]) <= kSmoothTolerance &&
           std::fabs(a.position[1] - b.position[1]) <= kSmoothTolerance &&
           std::fabs(a.position[2] - b.position[2]) <= kSmoothTolerance;
}

// The clusters of the nodes. Every pair of nodes a < b whose boxes meet is visited in order;
// for each vertex v of a (in order) and w of b (in order) that meet, w joins the first cluster
// (in list order) whose head meets v, or a new cluster with head v and first member w is
// appended. A vertex is never compared with one of its own node. A spatial index finds the
// candidates, so the cost grows with the number of vertices and of meeting pairs, not with the
// product of the node sizes; the result is that of the plain pair walk.
std::vector<SmoothCluster> gatherSmoothClusters(std::span<const SmoothNode> nodes);

// For each cluster in order: the world normals of head and members, in that order, summed in
// 64-bit floats and scaled by 1.0 / length (left at zero when the length is 0); each vertex of
// the cluster gets that normal taken back through its node's toNode and normalised again, as its
// NORMAL0 in its render node.
void applySmoothClusters(std::span<const SmoothNode> nodes, std::span<const SmoothCluster> clusters);

class NormalSmoother {
public:
    // Copies a render node's vertices into world space through its nodeWorldTransform.
    void collect(const Ptr<BaseMeshRenderNode>& node, std::span<const std::uint32_t> groups);
    // Copies a render node's vertices into world space: positions through world (row vectors,
    // translation in the last row), normals through its inverse transpose and normalised. groups
    // holds one smoothing group per vertex; another count throws nq::ExtException. A node without
    // POSITION0 or NORMAL0 of at least three floats has nothing to smooth and is not collected.
    void collect(const Ptr<BaseMeshRenderNode>& node, const nq::Matrixd& world,
                 std::span<const std::uint32_t> groups);
    // Leaves out the nodes that have left the model's lists since they were collected, takes each
    // node's smoothKeyOf and the way back into its space (from nodeWorldTransform) as they stand
    // now, and builds the clusters. A node that no longer holds the vertices it was collected
    // with (another count, or no NORMAL0) throws nq::ExtException.
    void gather();
    // Writes the clusters' normals into the render nodes.
    void apply();
    // The names of the collected nodes that hold a normal of zero length, each once, in the
    // order of collection.
    std::vector<std::string> zeroNormalNodes() const;
    void reset();

    const std::vector<SmoothNode>& nodes() const { return nodes_; }
    const std::vector<SmoothCluster>& clusters() const { return clusters_; }

private:
    std::vector<SmoothNode> nodes_;
    std::vector<SmoothCluster> clusters_;
};

}  // namespace model::utils
