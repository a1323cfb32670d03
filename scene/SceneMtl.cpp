#include "scene/SceneMtl.h"

namespace scene {

host::Mtl* SceneMtl::GetSubMtl(int i) {
    return i >= 0 && i < NumSubMtls() ? subMaterials[static_cast<std::size_t>(i)] : nullptr;
}

host::CustAttrib* SceneMtl::GetCustAttrib(int i) {
    return i >= 0 && i < GetNumCustAttribs() ? attributes[static_cast<std::size_t>(i)].get() : nullptr;
}

host::IParamBlock2* SceneMtl::GetParamBlock(int i) {
    return i >= 0 && i < NumParamBlocks() ? paramBlocks[static_cast<std::size_t>(i)].get() : nullptr;
}

host::Texmap* SceneMtl::GetSubTexmap(int i) {
    return i >= 0 && i < NumSubTexmaps() ? mapSlots[static_cast<std::size_t>(i)].map.get() : nullptr;
}

std::string SceneMtl::GetSubTexmapSlotName(int i) {
    return i >= 0 && i < NumSubTexmaps() ? mapSlots[static_cast<std::size_t>(i)].name : std::string();
}

bool SceneMtl::SubTexmapOn(int i) {
    return i >= 0 && i < NumSubTexmaps() && mapSlots[static_cast<std::size_t>(i)].on;
}

}  // namespace scene
