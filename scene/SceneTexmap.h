#pragma once
// A map of the headless scene. Every map answers as a bitmap (file name, coordinate offsets);
// callers tell bitmaps from other maps by the class. A layered map holds its layers as sub-maps.

#include <memory>
#include <string>
#include <vector>

#include "host/Mtl.h"
#include "scene/SceneSubAnims.h"

namespace scene {

class SceneTexmap final : public host::BitmapTex, private host::StdUVGen {
public:
    static constexpr host::Class_ID bitmapClass{0x240, 0};

    host::Class_ID ClassID() override { return classId; }
    std::string GetName() override { return name; }
    int NumSubTexmaps() override { return static_cast<int>(subMaps.size()); }
    host::Texmap* GetSubTexmap(int i) override;
    int NumSubs() override { return subAnims.count(); }
    host::Animatable* SubAnim(int i) override { return subAnims.child(i); }
    std::string SubAnimName(int i) override { return subAnims.name(i); }

    int GetMapChannel() override { return mapChannel; }
    int GetTextureTiling() override { return tiling; }
    void GetUVTransform(host::Matrix3& out) override { out = uvTransform; }
    std::string GetMapName() override { return fileName; }
    host::StdUVGen* GetUVGen() override { return this; }

    host::Class_ID classId = bitmapClass;
    std::string name;
    std::string fileName;
    int mapChannel = 1;
    int tiling = host::U_WRAP | host::V_WRAP;
    host::Matrix3 uvTransform;
    float uOffset = 0;
    float vOffset = 0;
    std::vector<std::unique_ptr<SceneTexmap>> subMaps;  // null for an empty sub-map
    SubAnimTree subAnims;

private:
    float GetUOffs(host::TimeValue) override { return uOffset; }
    float GetVOffs(host::TimeValue) override { return vOffset; }
};

}  // namespace scene
