// libFuzzer target for the scene document loader: any input either loads or is refused with a
// DocumentError; a crash, a sanitizer report or another exception is a fault. Built and run by
// scripts/fuzz.sh.
//
// fuzz-sources: host/*.cpp scene/*.cpp
// fuzz-packages: fmt
// fuzz-libs: -lsimdjson
// fuzz-seeds: fuzz/corpus/scene

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "scene/SceneLoader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        auto scene = scene::parseScene(std::string_view(reinterpret_cast<const char*>(data), size));
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
    } catch (const scene::DocumentError&) {
    }
    return 0;
}
