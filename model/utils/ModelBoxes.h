#pragma once
// The model's boxes computed from its data, for models where no helper set them.

#include "model/Box.h"
#include "model/RootNode.h"

namespace model::utils {

// The box, in model space at rest (every argument 0), of the positions of the render and shell
// nodes that carry vertices: each vertex is taken through the world transform of the tree node its
// parent tag names. Skin data follows its bones and is not counted; a model without geometry gives
// the empty box.
Box computeBoundingBox(const RootNode& root);

// The box of the positions of the light nodes' tree nodes at rest; the empty box without lights.
Box computeLightBox(const RootNode& root);

}  // namespace model::utils
