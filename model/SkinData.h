#pragma once
// What a skinned mesh adds to its node: the bones it hangs on, the argument and the box. Bone
// slot 0 is the tree node that carries the skin itself; slots 1 and on are the bones, in the
// order the vertices' bone numbers use. The bones are the node's links.

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <vector>

#include "model/Box.h"
#include "model/IModelArguments.h"
#include "model/Node.h"

namespace model {

class Node;

class SkinData {
public:
    std::vector<Ptr<Node>> bones;
    std::uint32_t argument = kNoArgument;
    // Written only when valid.
    Box box;

protected:
    const Ptr<Node>& bone(std::uint32_t i) const { return bones.at(i); }
    void setBone(std::uint32_t i, Ptr<Node> node) { bones.at(i) = std::move(node); }
    void reportArgument(const std::function<void(std::uint32_t)>& f) const {
        if (argument != kNoArgument) {
            f(argument);
        }
    }
};

}  // namespace model
