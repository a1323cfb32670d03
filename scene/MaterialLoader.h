#pragma once
// Reads the materials of a scene document and the references of nodes to them
// (docs/scene-format.md, "Materials" and "Maps").

#include "scene/DocumentReader.h"
#include "scene/Scene.h"

namespace scene {

// Reads the array "materials" into the scene; called inside the path step "materials".
void readMaterials(DocumentReader& reader, Scene& scene, simdjson::dom::element value);

// A reference to a material: its index in "materials", its name (which must be unique), or null
// for none.
SceneMtl* readMaterialRef(DocumentReader& reader, Scene& scene, simdjson::dom::element value);

}  // namespace scene
