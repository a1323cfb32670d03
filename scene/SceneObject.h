#pragma once
// The objects of the headless scene. A helper carries its box; any other object is known by its
// super class and class only, until the scene document carries its data.

#include "host/Object.h"

namespace scene {

class SceneObject : public host::Object {
public:
    SceneObject(host::SClass_ID superClass, host::Class_ID classId)
        : superClass_(superClass), class_(classId) {}

    host::Class_ID ClassID() override { return class_; }
    host::SClass_ID SuperClassID() override { return superClass_; }

private:
    host::SClass_ID superClass_;
    host::Class_ID class_;
};

class SceneHelper : public host::DummyObject {
public:
    // The box of a dummy made without a size: 10 units along each axis, centred.
    static constexpr host::Box3 defaultBox{{-5, -5, -5}, {5, 5, 5}};

    explicit SceneHelper(host::Class_ID classId, const host::Box3& box = defaultBox)
        : class_(classId), box_(box) {}

    host::Class_ID ClassID() override { return class_; }
    host::Box3 GetBox() override { return box_; }

private:
    host::Class_ID class_;
    host::Box3 box_;
};

}  // namespace scene
