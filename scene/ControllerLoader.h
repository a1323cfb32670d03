#pragma once
// Reads controllers of a scene document: a value, keys at ticks, and the argument entries of an
// argument list controller (docs/scene-format.md, "Controllers").

#include <memory>

#include "scene/DocumentReader.h"
#include "scene/SceneControl.h"
#include "scene/SceneSubAnims.h"

namespace scene {

std::unique_ptr<SceneControl> readController(DocumentReader& reader, simdjson::dom::element value);

// Reads an object whose keys are sub-animatable paths ("Coordinates/Parameters/U Offset") and whose
// values are controllers or null, and puts each into tree.
void readControllerPaths(DocumentReader& reader, simdjson::dom::element value, SubAnimTree& tree);

}  // namespace scene
