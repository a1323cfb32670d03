#pragma once
// Parameter blocks: a block of named parameters on a material or map, each parameter a value or a
// table of values. A block has an internal name in its descriptor; each parameter an internal name
// in its definition and a local name, which the user sees. Parameters are addressed by id.

#include <cstdint>
#include <string>

#include "host/Types.h"

namespace host {

using ParamID = std::int16_t;

struct ParamBlockDesc2 {
    std::string int_name;
};

struct ParamDef {
    std::string int_name;
};

class BitmapInfo {
public:
    BitmapInfo() = default;
    explicit BitmapInfo(std::string name) : name_(std::move(name)) {}
    // The bitmap's file path; empty when none is set.
    const std::string& Name() const { return name_; }
    void SetName(const std::string& name) { name_ = name; }

private:
    std::string name_;
};

// A bitmap parameter's value.
struct PBBitmap {
    BitmapInfo bi;
};

class IParamBlock2 {
public:
    virtual ~IParamBlock2() = default;
    virtual ParamBlockDesc2* GetDesc() = 0;
    virtual int NumParams() = 0;
    // The id of the parameter at index i.
    virtual ParamID IndextoID(int i) = 0;
    // The definition of a parameter; null for an unknown id.
    virtual const ParamDef* GetParamDef(ParamID id) = 0;
    virtual std::string GetLocalName(ParamID id, int tabIndex = 0) = 0;
    // The float value of a parameter, or entry tabIndex of a table, at time t. False when the id is
    // unknown, the parameter holds no floats or the entry is outside its table.
    virtual bool GetValue(ParamID id, TimeValue t, float& v, int tabIndex = 0) = 0;
    // The bitmap of a bitmap parameter at time t; null when none is set or the parameter holds none.
    virtual PBBitmap* GetBitmap(ParamID id, TimeValue t, int tabIndex = 0) = 0;
};

}  // namespace host
