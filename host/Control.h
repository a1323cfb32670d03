#pragma once
// Controllers: what drives an animated parameter or transform. A controller has keys at times in
// ticks and a value at any time. An argument list controller binds sub-controllers to the model's
// arguments; its own value is the base the keys of the sub-controllers are added to. The list
// interface (I_LISTCTRL of host/Constants.h) shows the entries of a list controller.

#include "host/Animatable.h"
#include "host/Matrix3.h"

namespace host {

class Control : public Animatable {
public:
    virtual int NumKeys() { return 0; }
    virtual TimeValue GetKeyTime(int i) {
        (void)i;
        return 0;
    }
    // Whether the controller keeps keys.
    virtual bool IsKeyable() { return false; }
    // The value at time t, of a float controller and of a three-valued (point or colour) one.
    virtual void GetValue(TimeValue t, float& value) = 0;
    virtual void GetValue(TimeValue t, Point3& value) = 0;
};

// The entries of a list controller.
class IListControl {
public:
    virtual ~IListControl() = default;
    virtual int GetListCount() = 0;
    // Entry i, or null.
    virtual Control* GetSubCtrl(int i) = 0;
};

// A controller whose entries are bound to arguments.
class ArgumentListControl : public Control {
public:
    virtual int NumArgumentSubs() = 0;
    // The argument of entry i; negative when the entry is bound to none.
    virtual int GetSubArgument(int i) = 0;
    // The controller of entry i, or null.
    virtual Control* GetSubController(int i) = 0;
};

}  // namespace host
