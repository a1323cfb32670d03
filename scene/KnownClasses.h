#pragma once
// The object classes whose super class the headless host knows, so that a scene document may
// give either and the host fills in the other.

#include <optional>

#include "host/Types.h"

namespace scene {

// The super class of a known class, or nothing for a class the host does not know.
std::optional<host::SClass_ID> knownSuperClass(host::Class_ID classId);
// The class an object of the super class gets when the document names none: the triangle
// object, the omni light, the spline shape or the dummy. Nothing for other super classes.
std::optional<host::Class_ID> defaultClass(host::SClass_ID superClass);

}  // namespace scene
