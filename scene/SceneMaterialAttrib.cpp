#include "scene/SceneMaterialAttrib.h"

#include <algorithm>

namespace scene {

bool SceneMaterialAttrib::acceptsNodeId(const char* modelClassName) {
    return !nodeIds || (modelClassName && std::find(nodeIds->begin(), nodeIds->end(),
                                                    std::string(modelClassName)) != nodeIds->end());
}

bool SceneMaterialAttrib::acceptsNodeKind(int kind) {
    return !nodeKinds || std::find(nodeKinds->begin(), nodeKinds->end(), kind) != nodeKinds->end();
}

void SceneMaterialAttrib::textureSlot(std::uint32_t index, host::TextureSlotDesc& out) {
    out = index < textureSlots.size() ? textureSlots[index] : host::TextureSlotDesc{};
}

}  // namespace scene
