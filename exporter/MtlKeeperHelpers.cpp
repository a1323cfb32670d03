#include "exporter/MtlKeeperHelpers.h"

#include <cstdint>

#include "core/Utf8.h"
#include "exporter/ReportError.h"
#include "host/BMMSplitFilename.h"
#include "host/Constants.h"

namespace exporter {
namespace {

// The host splits paths into fixed buffers: 100 wide characters for the name, 300 for the
// directory and 10 for the extension, each with its terminator.
constexpr std::size_t kMaxNameChars = 99;

std::string lowerBaseName(const std::string& path) {
    return nq::utf8ToLower(baseFileName(path));
}

}  // namespace

host::MaterialAttrib* findMaterialAttrib(host::Mtl* mtl) {
    host::ICustAttribContainer* container = mtl ? mtl->GetCustAttribContainer() : nullptr;
    if (!container) {
        return nullptr;
    }
    for (int i = 0; i < container->GetNumCustAttribs(); ++i) {
        host::CustAttrib* attribute = container->GetCustAttrib(i);
        if (attribute && attribute->ClassID() == host::MATERIAL_ATTRIB_CLASS_ID) {
            return dynamic_cast<host::MaterialAttrib*>(attribute);
        }
    }
    return nullptr;
}

host::Texmap* findSubMap(host::Mtl* mtl, std::string_view mapName, int layer) {
    if (!mtl) {
        return nullptr;
    }
    std::string wanted = nq::utf8ToLower(mapName);
    for (int i = 0; i < mtl->NumSubTexmaps(); ++i) {
        if (nq::utf8ToLower(mtl->GetSubTexmapSlotName(i)) != wanted || !mtl->SubTexmapOn(i)) {
            continue;
        }
        host::Texmap* map = mtl->GetSubTexmap(i);
        if (!map) {
            return nullptr;
        }
        std::int64_t count = map->NumSubTexmaps();
        if (count == 0) {
            return layer == 0 ? map : nullptr;
        }
        std::int64_t index = 2 * static_cast<std::int64_t>(layer);
        if (index < 0 || count <= index) {
            return nullptr;
        }
        return map->GetSubTexmap(static_cast<int>(index));
    }
    return nullptr;
}

void readTexture(host::Texmap* map, model::Texture& texture) {
    texture.name.clear();
    if (!map || map->ClassID() != host::Class_ID(host::BMTEX_CLASS_ID, 0)) {
        return;
    }
    auto* bitmap = dynamic_cast<host::BitmapTex*>(map);
    if (!bitmap) {
        return;
    }
    texture.name = lowerBaseName(bitmap->GetMapName());
    int tiling = map->GetTextureTiling();
    bool mirrorU = (tiling & host::U_MIRROR) != 0;
    bool mirrorV = (tiling & host::V_MIRROR) != 0;
    texture.wrapU = mirrorU ? 4 : 2;
    texture.wrapV = mirrorV ? 4 : 2;
    host::Matrix3 uv;
    map->GetUVTransform(uv);
    nq::Matrixd m = host::toMatrixd(uv);
    for (int row = 0; row < 4; ++row) {
        for (int col = 0; col < 4; ++col) {
            float value = static_cast<float>(m(row, col));
            if ((col == 0 && mirrorU) || (col == 1 && mirrorV)) {
                value *= 2.0f;
            }
            texture.matrix(row, col) = value;
        }
    }
}

bool isTwoSided(host::Mtl* mtl) {
    if (!mtl) {
        return false;
    }
    host::Class_ID id = mtl->ClassID();
    if (id == host::Class_ID(host::BAKE_SHELL_CLASS_ID, 0)) {
        mtl = mtl->GetSubMtl(1);
        if (!mtl) {
            return false;
        }
        id = mtl->ClassID();
    }
    if (id != host::Class_ID(host::DMTL_CLASS_ID, 0)) {
        return false;
    }
    auto* standard = dynamic_cast<host::StdMat2*>(mtl);
    return standard && standard->GetTwoSided();
}

std::string baseFileName(const std::string& path) {
    std::string name;
    host::BMMSplitFilename(path, nullptr, &name, nullptr);
    std::wstring wide = nq::utf8ToWide(name);
    if (wide.size() > kMaxNameChars) {
        wide.resize(kMaxNameChars);
    }
    return nq::wideToUtf8(wide);
}

bool findParamByName(host::IParamBlock2* block, std::string_view name, host::ParamID& id) {
    for (int i = 0; block && i < block->NumParams(); ++i) {
        host::ParamID candidate = block->IndextoID(i);
        if (block->GetLocalName(candidate) == name) {
            id = candidate;
            return true;
        }
    }
    return false;
}

int readBitmapParam(host::IParamBlock2* block, const char* name, const std::string& materialName,
                    const std::string& nodeName, model::Texture& texture) {
    texture.name.clear();
    host::ParamID id = 0;
    if (!findParamByName(block, name, id)) {
        reportError("Deck material misses '%s'. Material: '%s', node '%s'. File: %s:%d.", name,
                    materialName.c_str(), nodeName.c_str(), kMtlKeeperHelpersSource, __LINE__);
        return 0;
    }
    host::PBBitmap* bitmap = block->GetBitmap(id, 0, 0);
    if (!bitmap) {
        reportError("'%s' is not set. Material: '%s', node '%s'. File: %s:%d.", name, materialName.c_str(),
                    nodeName.c_str(), kMtlKeeperHelpersSource, __LINE__);
        return 0;
    }
    texture.name = lowerBaseName(bitmap->bi.Name());
    if (texture.name.empty()) {
        reportError("'%s' is not set as bitmap. Material: '%s', node '%s'. File: %s:%d.", name,
                    materialName.c_str(), nodeName.c_str(), kMtlKeeperHelpersSource, __LINE__);
        return 0;
    }
    return 1;
}

}  // namespace exporter
