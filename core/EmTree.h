#pragma once
// nq::EmTree: an intrusive ordered tree. Each element holds strong pointers to its parent, its
// first and last child and its two siblings, so a tree is a web of reference cycles; whoever owns
// the tree breaks them before letting go (see RootNode).
//
// T derives from EmTree<T, Storage>; Storage names the pointer type that holds the links. An
// element must already be held by such a pointer before it takes part in a tree, since the
// links point back at it.

#include <utility>
#include <vector>

#include "core/ExtException.h"
#include "core/Ptr.h"

namespace nq {

// Links held as nq::Ptr with the given deleter.
template <class T, class D>
struct EmTreePtrStorage {
    using Pointer = Ptr<T, D>;
};

template <class T, class Storage>
class EmTree {
public:
    using Pointer = typename Storage::Pointer;

    EmTree() = default;
    // A copy is a new, unlinked element: the links belong to the original's place in its tree.
    EmTree(const EmTree&) noexcept {}
    EmTree& operator=(const EmTree&) noexcept { return *this; }

    const Pointer& parent() const noexcept { return parent_; }
    const Pointer& firstChild() const noexcept { return firstChild_; }
    const Pointer& lastChild() const noexcept { return lastChild_; }
    const Pointer& nextSibling() const noexcept { return nextSibling_; }
    const Pointer& prevSibling() const noexcept { return prevSibling_; }

    // Inserts child before position, or at the end when position is empty. A child that has a
    // parent is taken from it first, so inserting moves.
    void insert(Pointer position, Pointer child) {
        if (!child) {
            throw ExtException("Can't insert an empty node.");
        }
        if (position && position.get() == child.get()) {
            if (child->parent_.get() == self()) {
                return;  // already in that place
            }
            throw ExtException("Can't insert a node before itself.");
        }
        if (position && position->parent_.get() != self()) {
            throw ExtException("Insert position isn't a child of this node.");
        }
        for (const T* up = self(); up; up = up->parent_.get()) {
            if (up == child.get()) {
                throw ExtException("Can't insert a node under itself or its descendant.");
            }
        }
        if (child->parent_) {
            child->parent_->remove(child);
        }
        child->parent_ = Pointer(self());
        if (!position) {
            child->prevSibling_ = lastChild_;
            if (lastChild_) {
                lastChild_->nextSibling_ = child;
            } else {
                firstChild_ = child;
            }
            lastChild_ = child;
            return;
        }
        child->nextSibling_ = position;
        child->prevSibling_ = position->prevSibling_;
        if (position->prevSibling_) {
            position->prevSibling_->nextSibling_ = child;
        } else {
            firstChild_ = child;
        }
        position->prevSibling_ = child;
    }

    // Appends child at the end of the children.
    void append(Pointer child) { insert(Pointer(), std::move(child)); }

    // Takes child out of this element's children and closes the gap.
    void remove(Pointer child) {
        if (!child || child->parent_.get() != self()) {
            throw ExtException("Node to remove isn't a child of this node.");
        }
        Pointer prev = std::move(child->prevSibling_);
        Pointer next = std::move(child->nextSibling_);
        if (prev) {
            prev->nextSibling_ = next;
        } else {
            firstChild_ = next;
        }
        if (next) {
            next->prevSibling_ = prev;
        } else {
            lastChild_ = prev;
        }
        child->parent_.reset();
    }

    // Takes this element out of its parent, if it has one.
    void detach() {
        if (parent_) {
            Pointer parent = parent_;
            parent->remove(Pointer(self()));
        }
    }

    std::vector<Pointer> children() const {
        std::vector<Pointer> result;
        for (const T* c = firstChild_.get(); c; c = c->nextSibling_.get()) {
            result.push_back(Pointer(const_cast<T*>(c)));
        }
        return result;
    }

    bool hasChildren() const noexcept { return static_cast<bool>(firstChild_); }

    // Clears the links that point up or sideways (parent, siblings, last child). The first-child
    // links that remain point only downwards, so no cycle is left once every element of a tree
    // has done this.
    void breakCycles() noexcept {
        parent_.reset();
        prevSibling_.reset();
        nextSibling_.reset();
        lastChild_.reset();
    }

protected:
    ~EmTree() = default;

private:
    T* self() noexcept { return static_cast<T*>(this); }
    const T* self() const noexcept { return static_cast<const T*>(this); }

    Pointer parent_;
    Pointer firstChild_;
    Pointer lastChild_;
    Pointer nextSibling_;
    Pointer prevSibling_;
};

}  // namespace nq
