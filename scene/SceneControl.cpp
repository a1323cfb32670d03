#include "scene/SceneControl.h"

#include <algorithm>

#include "host/Constants.h"

namespace scene {

void* SceneControl::GetInterface(std::uint32_t id) {
    return id == host::I_LISTCTRL && isList ? static_cast<host::IListControl*>(this) : nullptr;
}

host::TimeValue SceneControl::GetKeyTime(int i) {
    return i >= 0 && i < NumKeys() ? keys[static_cast<std::size_t>(i)].time : 0;
}

void SceneControl::GetValue(host::TimeValue t, host::Point3& out) {
    Value v = valueAt(t);
    out = host::Point3(v[0], v[1], v[2]);
}

int SceneControl::GetSubArgument(int i) {
    return i >= 0 && i < NumArgumentSubs() ? arguments[static_cast<std::size_t>(i)].argument : -1;
}

host::Control* SceneControl::GetSubController(int i) {
    return i >= 0 && i < NumArgumentSubs() ? arguments[static_cast<std::size_t>(i)].controller.get()
                                           : nullptr;
}

SceneControl::Value SceneControl::valueAt(host::TimeValue t) const {
    if (keys.empty()) {
        return value;
    }
    if (t <= keys.front().time) {
        return keys.front().value;
    }
    if (t >= keys.back().time) {
        return keys.back().value;
    }
    auto next = std::upper_bound(keys.begin(), keys.end(), t,
                                 [](host::TimeValue time, const Key& key) { return time < key.time; });
    const Key& b = *next;
    const Key& a = *(next - 1);
    double f = static_cast<double>(t - a.time) / static_cast<double>(b.time - a.time);
    Value v{};
    for (std::size_t i = 0; i < v.size(); ++i) {
        v[i] = static_cast<float>((1.0 - f) * a.value[i] + f * b.value[i]);
    }
    return v;
}

}  // namespace scene
