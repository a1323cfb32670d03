#pragma once
// Pre-order indices of the tree nodes that records refer to, for one save.
//
// The records of the root's lists name tree nodes by index, but a large tree has far more nodes
// than links. So the index holds only the nodes it is told to expect (the link targets of the
// lists), in one flat table keyed by pointer that stays in the cache; filling it reads the
// pre-order array and never touches the nodes. A node that was not expected (a class whose
// references do not show as links) makes the index take in the whole tree once, so the answer is
// always the tree's own.

#include <cstdint>
#include <optional>
#include <vector>

namespace model {

class Node;

class TreeNodeIndex {
public:
    // `order` is the tree in pre-order and must outlive the index.
    explicit TreeNodeIndex(const std::vector<Node*>& order) : order_(order) {}

    // Notes a node that will be asked for. Call before fill().
    void expect(const Node* node);
    // Gives each expected node that stands in the tree its pre-order index.
    void fill();
    // The pre-order index of node, or nothing when it is not in the tree.
    std::optional<std::uint32_t> find(const Node* node);

private:
    static constexpr std::uint32_t kNone = 0xFFFFFFFFu;
    struct Slot {
        const Node* node = nullptr;
        std::uint32_t index = kNone;
    };

    Slot& slotOf(const Node* node);
    void add(const Node* node, std::uint32_t index);
    void rebuild(std::size_t slotCount);

    const std::vector<Node*>& order_;
    // A power of two in size, at most half full; empty slots have no node.
    std::vector<Slot> slots_;
    std::size_t count_ = 0;
    bool filled_ = false;
    bool whole_ = false;
};

}  // namespace model
