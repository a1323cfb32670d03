#pragma once
// The links of a model's users, filed by the tree node they point at, so that asking what hangs
// on a node costs the size of the answer rather than a walk over every user.
//
// The index is taken from the root's lists once, and stays right as long as every link change
// goes through it (replaceLinks) or touches only links that linksOf has handed out: those are read
// again before the next question is answered, so a caller may re-point them with setLink in the
// meantime. The lists themselves must not change while the index is in use.

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "model/RootNode.h"
#include "model/utils/NodeHelpers.h"

namespace model::utils {

class LinkIndex {
public:
    explicit LinkIndex(const RootNode& root);

    bool isLinked(const Node* node);
    // In user-list order, and within a user by ascending link number.
    std::vector<NodeLink> linksOf(const Node* node);
    // Sets every link equal to oldNode to newNode; true if any was changed.
    bool replaceLinks(const Node* oldNode, const Ptr<Node>& newNode);

    // NodeHelpers members answering from this index, which must outlive them.
    void fill(NodeHelpers& helpers);

private:
    // One link: the user's position in the user list and the link number.
    struct Entry {
        std::uint32_t user = 0;
        std::uint32_t link = 0;
        auto operator<=>(const Entry&) const = default;
    };

    const Node* linkedNode(const Entry& entry) const;
    void add(const Node* node, const Entry& entry);
    // Files again the entries that linksOf handed out, under whatever node they point at now.
    void settle();

    std::vector<Ptr<BaseNode>> users_;
    std::unordered_map<const Node*, std::vector<Entry>> byNode_;
    // Nodes whose entries were handed out since the last settle.
    std::vector<const Node*> handedOut_;
};

}  // namespace model::utils
