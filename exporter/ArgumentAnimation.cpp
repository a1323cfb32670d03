#include "exporter/ArgumentAnimation.h"

#include "core/ExtException.h"
#include "exporter/KeyReducer.h"
#include "host/Constants.h"
#include "model/PropertyCreators.h"

namespace exporter {
namespace {

constexpr const char* kSource = "Exporter\\src\\MtlHandlers.cpp";

float read(host::Control& c, host::TimeValue t, float) {
    float v = 0;
    c.GetValue(t, v);
    return v;
}
osg::Vec3f read(host::Control& c, host::TimeValue t, osg::Vec3f) {
    host::Point3 p;
    c.GetValue(t, p);
    return osg::Vec3f{{p.x, p.y, p.z}};
}
float add(float a, float b) {
    return a + b;
}
osg::Vec3f add(const osg::Vec3f& a, const osg::Vec3f& b) {
    return osg::Vec3f{{a[0] + b[0], a[1] + b[1], a[2] + b[2]}};
}

template <class T>
model::Ptr<model::AnimatedProperty<T>> animatedProperty(const std::string& name,
                                                        host::ArgumentListControl& control,
                                                        const std::string& tooManyText, int line) {
    std::vector<ArgumentEntry> entries = argumentEntries(control);
    if (entries.size() != 1) {
        throw nq::ExtException(tooManyText, kSource, line);
    }
    host::Control& keyed = *entries[0].controller;
    T base = read(control, 0, T{});
    std::vector<model::AnimationKey<T>> keys;
    for (int i = 0; i < keyed.NumKeys(); ++i) {
        host::TimeValue t = keyed.GetKeyTime(i);
        keys.push_back({t / static_cast<double>(host::TIME_TICKSPERSEC), add(read(keyed, t, T{}), base)});
    }
    sortAndReduceKeys(keys, kArgumentKeyTolerance);
    return model::createAnimatedProperty<model::AnimatedProperty<T>>(
        name, static_cast<std::uint32_t>(entries[0].argument), std::move(keys));
}

}  // namespace

std::vector<ArgumentEntry> argumentEntries(host::ArgumentListControl& control) {
    std::vector<ArgumentEntry> entries;
    for (int i = 0; i < control.NumArgumentSubs(); ++i) {
        int argument = control.GetSubArgument(i);
        host::Control* sub = control.GetSubController(i);
        if (argument >= 0 && sub) {
            entries.push_back({argument, sub});
        }
    }
    return entries;
}

model::Ptr<model::AnimatedProperty<float>> animatedFloatProperty(const std::string& name,
                                                                 host::ArgumentListControl& control,
                                                                 const std::string& objectName) {
    return animatedProperty<float>(name, control,
                                   "Argument with name '" + name +
                                       "' MUST have only one argument per parameter. Obj: " + objectName +
                                       ".",
                                   __LINE__);
}

model::Ptr<model::AnimatedProperty<osg::Vec3f>> animatedVec3Property(const std::string& name,
                                                                     host::ArgumentListControl& control,
                                                                     const std::string& objectName) {
    return animatedProperty<osg::Vec3f>(
        name, control, "Light source MUST have only one argument per parameter.Obj: " + objectName + ".",
        __LINE__);
}

}  // namespace exporter
