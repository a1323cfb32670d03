#include "scene/SceneParamBlock.h"

namespace scene {

SceneParamBlock::Param* SceneParamBlock::find(host::ParamID id) {
    return id >= 0 && id < NumParams() ? &params[static_cast<std::size_t>(id)] : nullptr;
}

const host::ParamDef* SceneParamBlock::GetParamDef(host::ParamID id) {
    Param* p = find(id);
    return p ? &p->def : nullptr;
}

std::string SceneParamBlock::GetLocalName(host::ParamID id, int) {
    Param* p = find(id);
    return p ? p->localName : std::string();
}

bool SceneParamBlock::GetValue(host::ParamID id, host::TimeValue, float& v, int tabIndex) {
    Param* p = find(id);
    if (!p || tabIndex < 0 || static_cast<std::size_t>(tabIndex) >= p->floats.size()) {
        return false;
    }
    v = p->floats[static_cast<std::size_t>(tabIndex)];
    return true;
}

host::PBBitmap* SceneParamBlock::GetBitmap(host::ParamID id, host::TimeValue, int tabIndex) {
    Param* p = find(id);
    if (!p || tabIndex < 0 || static_cast<std::size_t>(tabIndex) >= p->bitmaps.size()) {
        return nullptr;
    }
    auto& bitmap = p->bitmaps[static_cast<std::size_t>(tabIndex)];
    return bitmap ? &*bitmap : nullptr;
}

}  // namespace scene
