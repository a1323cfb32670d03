#pragma once
// The three operations every concrete node class writes the same way: its type number and the
// two accepts that call the visitor's operation for the class.

#define MODEL_NODE_CLASS(ClassName)                     \
    NodeType nodeType() const override {                \
        return NodeType::ClassName;                     \
    }                                                   \
    void accept(INodeVisitor& visitor) override {       \
        visitor.visit(*this);                           \
    }                                                   \
    void accept(INodeVisitor& visitor) const override { \
        visitor.visit(*this);                           \
    }
