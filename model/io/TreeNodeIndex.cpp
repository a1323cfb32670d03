#include "model/io/TreeNodeIndex.h"

#include <bit>
#include <utility>

namespace model {

TreeNodeIndex::Slot& TreeNodeIndex::slotOf(const Node* node) {
    // Heap pointers differ mostly in their middle bits; the multiplicative mix spreads them.
    const auto key = reinterpret_cast<std::uintptr_t>(node);
    const int bits = std::countr_zero(slots_.size());
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t i = static_cast<std::size_t>((key * 0x9E3779B97F4A7C15ull) >> (64 - bits));;
         i = (i + 1) & mask) {
        if (slots_[i].node == node || slots_[i].node == nullptr) {
            return slots_[i];
        }
    }
}

void TreeNodeIndex::rebuild(std::size_t slotCount) {
    std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(slotCount));
    for (const Slot& slot : old) {
        if (slot.node) {
            slotOf(slot.node) = slot;
        }
    }
}

void TreeNodeIndex::add(const Node* node, std::uint32_t index) {
    if (slots_.empty() || 2 * (count_ + 1) > slots_.size()) {
        rebuild(slots_.empty() ? 64 : 2 * slots_.size());
    }
    Slot& slot = slotOf(node);
    if (!slot.node) {
        slot.node = node;
        ++count_;
    }
    slot.index = index;
}

void TreeNodeIndex::expect(const Node* node) {
    if (node && (slots_.empty() || slotOf(node).node != node)) {
        add(node, kNone);
    }
}

void TreeNodeIndex::fill() {
    filled_ = true;
    if (count_ == 0) {
        return;
    }
    for (std::size_t i = 0; i < order_.size(); ++i) {
        Slot& slot = slotOf(order_[i]);
        if (slot.node) {
            slot.index = static_cast<std::uint32_t>(i);
        }
    }
}

std::optional<std::uint32_t> TreeNodeIndex::find(const Node* node) {
    if (!slots_.empty()) {
        const Slot& slot = slotOf(node);
        if (slot.node == node && slot.index != kNone) {
            return slot.index;
        }
        // An expected node without an index after fill() is not in the tree.
        if (whole_ || (filled_ && slot.node == node)) {
            return std::nullopt;
        }
    }
    if (whole_) {
        return std::nullopt;
    }
    whole_ = true;
    rebuild(std::bit_ceil(2 * (order_.size() + count_) + 64));
    for (std::size_t i = 0; i < order_.size(); ++i) {
        add(order_[i], static_cast<std::uint32_t>(i));
    }
    return find(node);
}

}  // namespace model
