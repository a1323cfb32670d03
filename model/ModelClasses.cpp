#include "model/AnimatedProperty.h"
#include "model/ArgumentProperty.h"
#include "model/ObjectRegistry.h"
#include "model/Property.h"

namespace model {

namespace {
template <class P>
void registerProperty(ObjectRegistry& registry) {
    registry.registerClass<P>(P::kClassName);
}
}  // namespace

// Every concrete class of the model under the name that appears in the file. Property classes go
// by their template-shaped names; three of the animation names share one class.
void registerModelClasses(ObjectRegistry& registry) {
    registerProperty<FloatProperty>(registry);
    registerProperty<UIntProperty>(registry);
    registerProperty<Vec2fProperty>(registry);
    registerProperty<Vec3fProperty>(registry);
    registerProperty<Vec4fProperty>(registry);
    registerProperty<StringProperty>(registry);
    registerProperty<ArgumentProperty>(registry);
    registerProperty<AnimatedFloatProperty>(registry);
    registerProperty<AnimatedVec2fProperty>(registry);
    registerProperty<AnimatedVec3fProperty>(registry);
    registerProperty<AnimatedVec4fProperty>(registry);
}

}  // namespace model
