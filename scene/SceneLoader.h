#pragma once
// Reads a scene document (docs/scene-format.md) into a headless scene. A fault of any kind
// throws DocumentError naming its place; no partial scene is ever returned.

#include <memory>
#include <string>
#include <string_view>

#include "scene/DocumentError.h"
#include "scene/Scene.h"

namespace scene {

std::unique_ptr<Scene> parseScene(std::string_view json);
// A file that cannot be read throws DocumentError with the reason as its message.
std::unique_ptr<Scene> loadScene(const std::string& path);

}  // namespace scene
