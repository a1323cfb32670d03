#pragma once
// Scene objects: what a node carries (geometry, light, shape, helper, ...), told apart by super
// class and class. The result of evaluating a node at a time is an ObjectState.

#include "host/Animatable.h"
#include "host/Matrix3.h"

namespace host {

class Object : public Animatable {
public:
    // Whether the object can give an object of the class id, and the conversion. The result is
    // the object itself or a new one that the caller ends with DeleteThis; null when it cannot.
    virtual bool CanConvertToType(Class_ID id) {
        (void)id;
        return false;
    }
    virtual Object* ConvertToType(TimeValue t, Class_ID id) {
        (void)t;
        (void)id;
        return nullptr;
    }
    virtual void DeleteThis() { delete this; }
};

// A node's object as evaluated at one time, at the top of its modifier stack.
struct ObjectState {
    Object* obj = nullptr;
};

class HelperObject : public Object {
public:
    // The literal stands for HELPER_CLASS_ID: this header is also read beside the host's own
    // headers, where that name is a macro.
    SClass_ID SuperClassID() override { return 0x50; }
};

// The dummy helper: a box with no other data.
class DummyObject : public HelperObject {
public:
    // The box in the object's own space.
    virtual Box3 GetBox() = 0;
};

}  // namespace host
