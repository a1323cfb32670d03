#include "OptimizerModels.h"

#include <bit>
#include <sstream>
#include <unordered_map>

#include "model/Bone.h"

namespace optimizer_test {

model::utils::NodeHelpers straightforwardLinks(RootNode& root) {
    model::utils::NodeHelpers h;
    h.replaceLinks = [&root](const Ptr<Node>& o, const Ptr<Node>& n) {
        return root.replaceLinks(o.get(), n);
    };
    h.isLinked = [&root](const Ptr<Node>& n) { return root.isLinked(n.get()); };
    h.linksOf = [&root](const Ptr<Node>& n) { return root.linksOf(n.get()); };
    return h;
}

namespace {

// Each element by its bits, so that two matrices read the same only when they are the same.
void put(std::ostream& out, const nq::Matrixd& m) {
    for (int i = 0; i < 16; ++i) {
        out << ' ' << std::hex << std::bit_cast<std::uint64_t>(m[i]) << std::dec;
    }
}

}  // namespace

std::string describe(const RootNode& root) {
    std::ostringstream out;
    std::unordered_map<const Node*, int> position;
    if (root.rootNode()) {
        root.rootNode()->visit([&](const Ptr<Node>& node) {
            int depth = 0;
            for (Node* p = node->parent().get(); p; p = p->parent().get()) {
                ++depth;
            }
            position.emplace(node.get(), static_cast<int>(position.size()));
            out << std::string(static_cast<std::size_t>(depth) * 2, ' ') << nodeTypeName(node->nodeType())
                << " '" << node->name << "'";
            if (auto* t = dynamic_cast<const TransformNode*>(node.get())) {
                put(out, t->matrix);
            }
            if (auto* b = dynamic_cast<const IBone*>(node.get())) {
                out << " bone";
                put(out, b->boneMatrix);
            }
            out << '\n';
            return true;
        });
    }
    for (const Ptr<BaseNode>& user : root.allUsers()) {
        out << nodeTypeName(user->nodeType()) << " '" << user->name << "' ->";
        for (std::uint32_t i = 0; i < user->linkCount(); ++i) {
            Ptr<Node> target = user->link(i);
            auto it = position.find(target.get());
            if (it != position.end()) {
                out << ' ' << it->second;
            } else {
                out << " outside '" << (target ? target->name : std::string("null")) << "'";
            }
        }
        if (auto* t = dynamic_cast<const TestUser*>(user.get())) {
            for (const nq::Matrixd& m : t->baked) {
                out << " |";
                put(out, m);
            }
        }
        out << '\n';
    }
    return out.str();
}

}  // namespace optimizer_test
