#include "model/NodeCreators.h"

namespace model {

Ptr<Node> createNode(std::string_view name) {
    Ptr<Node> node = createNodeAs<Node>(nodeTypeName(NodeType::Node));
    if (node) {
        node->name = name;
    }
    return node;
}

Ptr<TransformNode> createTransformNode(std::string_view name, const nq::Matrixd& matrix) {
    Ptr<TransformNode> node = createNodeAs<TransformNode>(nodeTypeName(NodeType::TransformNode));
    if (node) {
        node->name = name;
        node->matrix = matrix;
    }
    return node;
}

}  // namespace model
