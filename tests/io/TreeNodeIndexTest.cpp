#include <gtest/gtest.h>

#include <vector>

#include "model/Node.h"
#include "model/NodeCreators.h"
#include "model/io/TreeNodeIndex.h"

namespace {

using model::TreeNodeIndex;

// A pre-order array of plain nodes; the index reads only the pointers.
struct Tree {
    std::vector<model::Ptr<model::Node>> owned;
    std::vector<model::Node*> order;

    explicit Tree(int count) {
        for (int i = 0; i < count; ++i) {
            owned.push_back(model::createNode("n" + std::to_string(i)));
            order.push_back(owned.back().get());
        }
    }
};

TEST(TreeNodeIndex, ExpectedNodesGetTheirPreOrderIndex) {
    Tree tree(1000);
    TreeNodeIndex index(tree.order);
    // Expected more than once, and enough of them that the table grows.
    for (int i = 999; i >= 0; i -= 3) {
        index.expect(tree.order[static_cast<std::size_t>(i)]);
        index.expect(tree.order[static_cast<std::size_t>(i)]);
    }
    index.fill();
    for (int i = 999; i >= 0; i -= 3) {
        ASSERT_EQ(index.find(tree.order[static_cast<std::size_t>(i)]), static_cast<std::uint32_t>(i));
    }
}

// A node the lists did not announce is still found; one outside the tree, or none, is not.
TEST(TreeNodeIndex, UnexpectedTreeNodesAreFoundAndOutsidersAreNot) {
    Tree tree(300);
    model::Ptr<model::Node> outside = model::createNode("outside");
    {
        TreeNodeIndex index(tree.order);
        index.expect(tree.order[5]);
        index.expect(outside.get());
        index.fill();
        EXPECT_EQ(index.find(outside.get()), std::nullopt);
        EXPECT_EQ(index.find(tree.order[5]), 5u);
        EXPECT_EQ(index.find(tree.order[299]), 299u);
        EXPECT_EQ(index.find(tree.order[0]), 0u);
        EXPECT_EQ(index.find(outside.get()), std::nullopt);
        EXPECT_EQ(index.find(nullptr), std::nullopt);
    }
    {
        TreeNodeIndex index(tree.order);
        index.fill();
        EXPECT_EQ(index.find(nullptr), std::nullopt);
        EXPECT_EQ(index.find(tree.order[42]), 42u);
    }
    std::vector<model::Node*> empty;
    TreeNodeIndex none(empty);
    none.fill();
    EXPECT_EQ(none.find(outside.get()), std::nullopt);
}

}  // namespace
