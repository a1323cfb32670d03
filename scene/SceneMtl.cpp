#include "scene/SceneMtl.h"

namespace scene {

host::Mtl* SceneMtl::GetSubMtl(int i) {
    return i >= 0 && i < NumSubMtls() ? subMaterials[static_cast<std::size_t>(i)] : nullptr;
}

host::CustAttrib* SceneMtl::GetCustAttrib(int i) {
    return i >= 0 && i < GetNumCustAttribs() ? attributes[static_cast<std::size_t>(i)].get() : nullptr;
}

}  // namespace scene
