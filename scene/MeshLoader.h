#pragma once
// The triangle objects of a scene document.

#include <optional>

#include "host/Object.h"
#include "scene/DocumentReader.h"
#include "scene/Scene.h"

namespace scene {

// A triangle object, added to the scene, with the mesh of the object's "mesh" field when it has
// one (docs/scene-format.md, "Meshes"); the reader stands at the object.
host::Object* readMeshObject(DocumentReader& reader, Scene& scene,
                             const std::optional<DocumentReader::element>& value);

}  // namespace scene
