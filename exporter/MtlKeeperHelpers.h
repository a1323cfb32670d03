#pragma once
// How the material keeper reads the scene's materials and maps: the material description
// attribute, map slots and layers, bitmaps and their file names, parameters by name, and the
// two-sided flag.

#include <string>
#include <string_view>

#include "host/MaterialAttrib.h"
#include "host/Mtl.h"
#include "host/ParamBlock.h"
#include "model/Texture.h"

namespace exporter {

// Where the messages of these helpers say they come from.
inline constexpr const char* kMtlKeeperHelpersSource = "Exporter\\src\\MtlKeeperHelpers.cpp";

// The first custom attribute of the material description class, or null.
host::MaterialAttrib* findMaterialAttrib(host::Mtl* mtl);

// The map in the first switched-on map slot named mapName (case ignored). Layer 0 of a map without
// sub-maps is the map itself; layer n of a layered map is its sub-map 2n. Null when there is none.
host::Texmap* findSubMap(host::Mtl* mtl, std::string_view mapName, int layer);

// Fills texture from a bitmap map: the lower-cased bare file name, the wrap modes by the mirror
// bits and the UV transform, scaled by 2 along a mirrored axis. Any other map leaves the name
// empty and the rest as it was.
void readTexture(host::Texmap* map, model::Texture& texture);

// Standard materials of the older class carry the flag; a shell material takes it from its baked
// material. Every other material is one-sided.
bool isTwoSided(host::Mtl* mtl);

// The file name of a path without directory and extension, at most 99 characters.
std::string baseFileName(const std::string& path);

// The id of the first parameter whose local name is name (whole text, case kept).
bool findParamByName(host::IParamBlock2* block, std::string_view name, host::ParamID& id);

// Puts the lower-cased bare file name of the bitmap parameter name into texture; reports why and
// returns 0 when the parameter is missing, holds no bitmap or a bitmap without file.
int readBitmapParam(host::IParamBlock2* block, const char* name, const std::string& materialName,
                    const std::string& nodeName, model::Texture& texture);

}  // namespace exporter
