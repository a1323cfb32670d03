#pragma once
// Typed creators: a node made through the registry with its fields set at once. Each returns an
// empty pointer when the class is not registered.

#include <string_view>

#include "core/Math.h"
#include "model/Node.h"
#include "model/ObjectRegistry.h"
#include "model/TransformNode.h"

namespace model {

// A node of the named class, reached from the registry's object through its INode part.
template <class T>
Ptr<T> createNodeAs(std::string_view className) {
    Ptr<IObject> object = ObjectRegistry::instance().createObject(className);
    auto* node = dynamic_cast<INode*>(object.get());
    return Ptr<T>(dynamic_cast<T*>(node));
}

Ptr<Node> createNode(std::string_view name);
Ptr<TransformNode> createTransformNode(std::string_view name, const nq::Matrixd& matrix);

}  // namespace model
