#pragma once
// The walk of the scene: one scene node at a time, its settings, its transforms, what its object
// becomes, then its children.

#include "host/INode.h"
#include "model/Box.h"
#include "model/RootNode.h"
#include "model/TransformNode.h"

namespace exporter {

class NQModelExporter;

// An empty box: minima at the largest float, maxima at its negative.
inline model::Box emptyBox() {
    return model::Box{};
}

// The scene nodes under node and node itself.
int countNodes(host::INode* node);

// Exports node and its subtree under parent. box is the box that goes down the walk (a skin box
// helper replaces it for its subtree). Returns false only after the user cancelled.
bool exportNode(NQModelExporter& exporter, model::Ptr<model::Node> parent, host::INode* node, model::Box box);

}  // namespace exporter
