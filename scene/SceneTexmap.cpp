#include "scene/SceneTexmap.h"

namespace scene {

host::Texmap* SceneTexmap::GetSubTexmap(int i) {
    return i >= 0 && i < NumSubTexmaps() ? subMaps[static_cast<std::size_t>(i)].get() : nullptr;
}

}  // namespace scene
