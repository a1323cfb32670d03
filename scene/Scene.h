#pragma once
// The headless scene: the node tree under an invisible root, the objects and materials the
// nodes refer to, and the scene-wide values the host reports.

#include <memory>
#include <string>
#include <vector>

#include "host/Object.h"
#include "host/Types.h"
#include "scene/SceneMtl.h"
#include "scene/SceneNode.h"

namespace scene {

class Scene {
public:
    Scene() { root.name = "Scene Root"; }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    // Takes ownership and returns the object for a node to refer to.
    template <class T>
    T& addObject(std::unique_ptr<T> object) {
        T& ref = *object;
        objects_.push_back(std::move(object));
        return ref;
    }
    SceneMtl& addMaterial(std::unique_ptr<SceneMtl> material) {
        materials_.push_back(std::move(material));
        return *materials_.back();
    }
    const std::vector<std::unique_ptr<SceneMtl>>& materials() const { return materials_; }

    // The scene file; empty for a scene that was never saved.
    std::string filePath;
    host::TimeValue time = 0;
    int ticksPerFrame = 160;
    SceneNode root;

private:
    std::vector<std::unique_ptr<host::Object>> objects_;
    std::vector<std::unique_ptr<SceneMtl>> materials_;
};

}  // namespace scene
