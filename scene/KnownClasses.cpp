#include "scene/KnownClasses.h"

#include <array>
#include <utility>

#include "host/Constants.h"

namespace scene {
namespace {

using namespace host;

constexpr std::array<std::pair<Class_ID, SClass_ID>, 10> knownClasses{{
    {Class_ID(TRIOBJ_CLASS_ID, 0), GEOMOBJECT_CLASS_ID},
    {BONE_OBJ_CLASSID, GEOMOBJECT_CLASS_ID},
    {Class_ID(OMNI_LIGHT_CLASS_ID, 0), LIGHT_CLASS_ID},
    {Class_ID(SPOT_LIGHT_CLASS_ID, 0), LIGHT_CLASS_ID},
    {Class_ID(DIR_LIGHT_CLASS_ID, 0), LIGHT_CLASS_ID},
    {Class_ID(FSPOT_LIGHT_CLASS_ID, 0), LIGHT_CLASS_ID},
    {Class_ID(TDIR_LIGHT_CLASS_ID, 0), LIGHT_CLASS_ID},
    {Class_ID(SPLINESHAPE_CLASS_ID, 0), SHAPE_CLASS_ID},
    {Class_ID(POINTHELP_CLASS_ID, 0), HELPER_CLASS_ID},
    {Class_ID(DUMMY_CLASS_ID, 0), HELPER_CLASS_ID},
}};

}  // namespace

std::optional<SClass_ID> knownSuperClass(Class_ID classId) {
    for (const auto& [known, superClass] : knownClasses) {
        if (known == classId) {
            return superClass;
        }
    }
    return std::nullopt;
}

std::optional<Class_ID> defaultClass(SClass_ID superClass) {
    switch (superClass) {
        case GEOMOBJECT_CLASS_ID:
            return Class_ID(TRIOBJ_CLASS_ID, 0);
        case LIGHT_CLASS_ID:
            return Class_ID(OMNI_LIGHT_CLASS_ID, 0);
        case SHAPE_CLASS_ID:
            return Class_ID(SPLINESHAPE_CLASS_ID, 0);
        case HELPER_CLASS_ID:
            return Class_ID(DUMMY_CLASS_ID, 0);
        default:
            return std::nullopt;
    }
}

}  // namespace scene
