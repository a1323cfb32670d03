#pragma once
// The geometry branch of the walk: what a scene node's geometry object becomes by its TYPE bits.

#include <string>

#include "exporter/NodeSettings.h"
#include "host/INode.h"
#include "host/Object.h"
#include "model/Node.h"

namespace exporter {

class NQModelExporter;

// Exports the geometry object of node under parent: render nodes for a renderable mesh (or one
// without TYPE), nothing for a bone or a node another root has exported already. Bits that do not
// belong on geometry are reported and nothing is exported.
void exportGeometry(NQModelExporter& exporter, const model::Ptr<model::Node>& parent, host::INode* node,
                    host::Object* object, const std::string& name, const NodeSettings& settings);

}  // namespace exporter
