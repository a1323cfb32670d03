#pragma once
// Double dispatch over the property classes. Every visit does nothing unless overridden, so a
// visitor names only the classes it cares about.

#include "model/PropertyTypes.h"

namespace model {

class IPropertyVisitor {
public:
    virtual ~IPropertyVisitor() = default;
    virtual void visit(AnimatedVec4fProperty&) {}
    virtual void visit(AnimatedVec3fProperty&) {}
    virtual void visit(AnimatedVec2fProperty&) {}
    virtual void visit(AnimatedFloatProperty&) {}
    virtual void visit(ArgumentProperty&) {}
    virtual void visit(StringProperty&) {}
    virtual void visit(Vec4fProperty&) {}
    virtual void visit(Vec3fProperty&) {}
    virtual void visit(Vec2fProperty&) {}
    virtual void visit(UIntProperty&) {}
    virtual void visit(FloatProperty&) {}
};

}  // namespace model
