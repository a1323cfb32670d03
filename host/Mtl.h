#pragma once
// Scene materials and maps. Both are MtlBase: a named object with map slots (sub-texmaps). A
// material also has sub-materials (a multi-material's slots) and switches its map slots on and
// off; a map has a map channel, a tiling mode and a UV transform, and may be layered (sub-maps).

#include <string>

#include "host/Animatable.h"
#include "host/Matrix3.h"

namespace host {

class Texmap;

struct Color {
    float r = 0, g = 0, b = 0;
    bool operator==(const Color&) const = default;
};

class MtlBase : public Animatable {
public:
    virtual std::string GetName() = 0;
    virtual int NumSubTexmaps() { return 0; }
    // The map in slot i, or null for an empty slot or an index outside the range.
    virtual Texmap* GetSubTexmap(int i) {
        (void)i;
        return nullptr;
    }
    // The name of map slot i as the material editor shows it ("Diffuse Color").
    virtual std::string GetSubTexmapSlotName(int i) {
        (void)i;
        return {};
    }
};

class Mtl : public MtlBase {
public:
    SClass_ID SuperClassID() override { return 0xC00; }  // MATERIAL_CLASS_ID
    virtual int NumSubMtls() { return 0; }
    // Sub-material i, or null for an empty slot or an index outside the range.
    virtual Mtl* GetSubMtl(int i) {
        (void)i;
        return nullptr;
    }
    // Whether map slot i is switched on.
    virtual bool SubTexmapOn(int i) {
        (void)i;
        return true;
    }
    // The colours of sub-material mtlNum, front or back face.
    virtual Color GetAmbient(int mtlNum = 0, bool backFace = false) {
        (void)mtlNum;
        (void)backFace;
        return {};
    }
    virtual Color GetDiffuse(int mtlNum = 0, bool backFace = false) {
        (void)mtlNum;
        (void)backFace;
        return {};
    }
};

// The shading model of a standard material: the values it adds to the material's colours.
class Shader {
public:
    virtual ~Shader() = default;
    virtual float GetSpecularLevel(int mtlNum = 0, bool backFace = false) = 0;
    virtual float GetGlossiness(int mtlNum = 0, bool backFace = false) = 0;
    virtual Color GetSelfIllumColor(int mtlNum = 0, bool backFace = false) = 0;
};

// The standard material, classes (2, 0) and (3, 0).
class StdMat2 : public Mtl {
public:
    virtual bool GetTwoSided() = 0;
    // Null when the material has no shader.
    virtual Shader* GetShader() = 0;
};

// Bits of Texmap::GetTextureTiling.
inline constexpr int U_WRAP = 1;
inline constexpr int V_WRAP = 2;
inline constexpr int U_MIRROR = 4;
inline constexpr int V_MIRROR = 8;

class Texmap : public MtlBase {
public:
    SClass_ID SuperClassID() override { return 0xC10; }  // TEXMAP_CLASS_ID
    // The mapping channel the map reads its coordinates from; 1 by default.
    virtual int GetMapChannel() { return 1; }
    // The U_WRAP, V_WRAP, U_MIRROR and V_MIRROR bits.
    virtual int GetTextureTiling() { return U_WRAP | V_WRAP; }
    // The transform of the map's texture coordinates.
    virtual void GetUVTransform(Matrix3& uvtrans) { uvtrans.IdentityMatrix(); }
};

// The coordinate generator of a bitmap: its offsets along U and V.
class StdUVGen {
public:
    virtual ~StdUVGen() = default;
    virtual float GetUOffs(TimeValue t) = 0;
    virtual float GetVOffs(TimeValue t) = 0;
};

// The bitmap map, class (0x240, 0).
class BitmapTex : public Texmap {
public:
    // The bitmap's file path as given in the scene.
    virtual std::string GetMapName() = 0;
    virtual StdUVGen* GetUVGen() = 0;
};

}  // namespace host
