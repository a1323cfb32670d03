#pragma once
// Animated properties from argument list controllers: the one entry of the controller gives the
// argument and the keys, and the controller's own value is added to every key.

#include <cstdint>
#include <string>
#include <vector>

#include "host/Control.h"
#include "model/AnimatedProperty.h"
#include "model/IObject.h"

namespace exporter {

// Redundant keys closer than this are removed.
inline constexpr double kArgumentKeyTolerance = 0.001;

struct ArgumentEntry {
    int argument = -1;
    host::Control* controller = nullptr;
};

// The entries bound to an argument (not negative) that have a controller, in order.
std::vector<ArgumentEntry> argumentEntries(host::ArgumentListControl& control);

// Throw nq::ExtException unless the controller has exactly one entry.
model::Ptr<model::AnimatedProperty<float>> animatedFloatProperty(const std::string& name,
                                                                 host::ArgumentListControl& control,
                                                                 const std::string& objectName);
model::Ptr<model::AnimatedProperty<osg::Vec3f>> animatedVec3Property(const std::string& name,
                                                                     host::ArgumentListControl& control,
                                                                     const std::string& objectName);

}  // namespace exporter
