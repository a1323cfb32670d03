#pragma once
// Records of property lists, textures and materials in format version 10.

#include "model/PropertiesSet.h"
#include "model/PropertyList.h"
#include "model/Texture.h"
#include "model/io/IBinaryFileW.h"

namespace model {

// u32 count, then each property record in list order.
void writePropertyList(io::IBinaryFileW& file, const PropertyList& list);

// Channel, the name lower-cased (the stored name stays as it is), wraps, filters, matrix.
void writeTexture(io::IBinaryFileW& file, const Texture& texture);

// The keyed entries of a material behind their count. The count is written last and inserted in
// front of the entries, which needs a sink whose write inserts at the cursor. Slot 2 loses its
// texture in place when slot 13 has one too.
void writeMaterial(io::IBinaryFileW& file, PropertiesSet& material);

}  // namespace model
