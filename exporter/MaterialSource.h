#pragma once
// What the node converters need from the material keeper: the model material of a scene material
// for a node of a given model class, and the scene map channels that the vertices of that material
// carry, in the order of its texture-coordinate channels. The mesh converter is written against this
// interface so that it can be driven by the keeper or by a fixed table in tests.

#include <cstdint>
#include <vector>

#include "model/PropertiesSet.h"

namespace host {
class Mtl;
class INode;
}  // namespace host

namespace exporter {

// Shared pointer to a model material; empty when the scene material is not exported.
using PropertiesSetPtr = nq::Ptr<model::PropertiesSet>;

class MaterialSource {
public:
    virtual ~MaterialSource() = default;
    // `kind`: 0 for meshes and the first stage of fake lights, 1 for fake-light node builders,
    // 2 for line objects. `modelClassName`: the full class name of the owning model node.
    virtual PropertiesSetPtr getMaterial(host::Mtl* mtl, int kind, const char* modelClassName,
                                         host::INode* node) = 0;
    // Empties `out`, then copies the channel list of a known material into it.
    virtual void getTextureChannels(const model::PropertiesSet* material,
                                    std::vector<std::uint32_t>& out) = 0;
};

}  // namespace exporter
