#pragma once
// A parameter block of the headless scene. Parameter ids are the parameters' indices. A parameter
// holds a table of floats or a table of bitmaps (an empty entry is a bitmap not set).

#include <optional>
#include <string>
#include <vector>

#include "host/ParamBlock.h"

namespace scene {

class SceneParamBlock final : public host::IParamBlock2 {
public:
    struct Param {
        host::ParamDef def;
        std::string localName;
        std::vector<float> floats;
        std::vector<std::optional<host::PBBitmap>> bitmaps;
    };

    host::ParamBlockDesc2 desc;
    std::vector<Param> params;

    host::ParamBlockDesc2* GetDesc() override { return &desc; }
    int NumParams() override { return static_cast<int>(params.size()); }
    host::ParamID IndextoID(int i) override { return static_cast<host::ParamID>(i); }
    const host::ParamDef* GetParamDef(host::ParamID id) override;
    std::string GetLocalName(host::ParamID id, int tabIndex = 0) override;
    bool GetValue(host::ParamID id, host::TimeValue t, float& v, int tabIndex = 0) override;
    host::PBBitmap* GetBitmap(host::ParamID id, host::TimeValue t, int tabIndex = 0) override;

private:
    Param* find(host::ParamID id);
};

}  // namespace scene
