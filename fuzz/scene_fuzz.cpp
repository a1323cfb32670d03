// libFuzzer target for the scene document loader: any input either loads or is refused with a
// DocumentError; a crash, a sanitizer report or another exception is a fault. An input with the
// key "nodes" is also read with that key written "nod\u0065s", which the loader does not split at
// the nodes: both readings must load the same nodes or give the same fault. Built and run by
// scripts/fuzz.sh.
//
// fuzz-sources: host/*.cpp scene/*.cpp
// fuzz-packages: fmt
// fuzz-libs: -lsimdjson
// fuzz-seeds: fuzz/corpus/scene

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "scene/SceneLoader.h"

namespace {

int countNodes(host::INode* node) {
    int count = 1;
    for (int i = 0; i < node->NumberOfChildren(); ++i) {
        count += countNodes(node->GetChildNode(i));
    }
    return count;
}

// What a reading gave: the node count of the scene, or the fault's path and message (the line
// and column move with the longer key).
std::string outcome(std::string_view text) {
    try {
        auto scene = scene::parseScene(text);
        // Walk what was loaded through the host operations.
        host::INode* root = &scene->root;
        for (int i = 0; i < root->NumberOfChildren(); ++i) {
            host::INode* node = root->GetChildNode(i);
            (void)node->GetObjectTM(scene->time);
            if (host::Mtl* mtl = node->GetMtl()) {
                for (int s = 0; s < mtl->NumSubMtls(); ++s) {
                    (void)mtl->GetSubMtl(s);
                }
            }
        }
        return "nodes " + std::to_string(countNodes(root));
    } catch (const scene::DocumentError& e) {
        return e.path() + ": " + e.message();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string split = outcome(text);
    if (const std::size_t key = text.find("\"nodes\":"); key != std::string_view::npos) {
        std::string whole(text);
        whole.replace(key + 4, 1, "\\u0065");
        if (outcome(whole) != split) {
            std::abort();
        }
    }
    return 0;
}
