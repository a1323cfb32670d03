#pragma once
// A controller of the headless scene: a value, keys at ticks, and, for an argument list
// controller, its entries bound to arguments. Values have up to four components; a float
// controller uses the first. Between keys the value is linear, outside them it holds the
// nearest key; a controller without keys has its value at all times.

#include <array>
#include <memory>
#include <vector>

#include "host/Control.h"

namespace scene {

class SceneControl final : public host::ArgumentListControl, private host::IListControl {
public:
    using Value = std::array<float, 4>;
    struct Key {
        host::TimeValue time = 0;
        Value value{};
    };
    struct Argument {
        int argument = -1;
        std::unique_ptr<SceneControl> controller;  // may be null
    };

    // The plain keyframe float controller.
    static constexpr host::Class_ID defaultClass{0x2007, 0};

    host::Class_ID classId = defaultClass;
    host::SClass_ID superClass = 0x9003;  // CTRL_FLOAT_CLASS_ID
    Value value{};
    std::vector<Key> keys;  // in time order
    bool keyable = true;
    // A list controller offers the list interface and its argument entries.
    bool isList = false;
    std::vector<Argument> arguments;

    host::Class_ID ClassID() override { return classId; }
    host::SClass_ID SuperClassID() override { return superClass; }
    void* GetInterface(std::uint32_t id) override;

    int NumKeys() override { return static_cast<int>(keys.size()); }
    host::TimeValue GetKeyTime(int i) override;
    bool IsKeyable() override { return keyable; }
    void GetValue(host::TimeValue t, float& out) override { out = valueAt(t)[0]; }
    void GetValue(host::TimeValue t, host::Point3& out) override;

    int NumArgumentSubs() override { return isList ? static_cast<int>(arguments.size()) : 0; }
    int GetSubArgument(int i) override;
    host::Control* GetSubController(int i) override;

    Value valueAt(host::TimeValue t) const;

private:
    int GetListCount() override { return NumArgumentSubs(); }
    host::Control* GetSubCtrl(int i) override { return GetSubController(i); }
};

}  // namespace scene
