#include "scene/SceneNode.h"

#include "scene/SceneMtl.h"

namespace scene {

SceneNode& SceneNode::addChild() {
    children_.push_back(std::make_unique<SceneNode>(this));
    return *children_.back();
}

host::INode* SceneNode::GetChildNode(int i) {
    return i >= 0 && i < NumberOfChildren() ? children_[static_cast<std::size_t>(i)].get() : nullptr;
}

// The headless scene has no layers, so checkLayer changes nothing.
bool SceneNode::IsNodeHidden(bool) {
    return hidden;
}

host::Mtl* SceneNode::GetMtl() {
    return material;
}

// The scene holds each object as it stands at the export time; there is no modifier stack yet.
host::ObjectState SceneNode::EvalWorldState(host::TimeValue, bool) {
    return host::ObjectState{object};
}

host::Matrix3 SceneNode::GetNodeTM(host::TimeValue) {
    // The root stands at the identity. Below it each world matrix is the local matrix times the
    // parent's finished world matrix, computed from the top down as the host does.
    std::vector<const SceneNode*> chain;
    for (const SceneNode* n = this; n->parent_; n = n->parent_) {
        chain.push_back(n);
    }
    host::Matrix3 world;
    for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
        world = (*it)->localTM * world;
    }
    return world;
}

host::Matrix3 SceneNode::GetParentTM(host::TimeValue t) {
    return parent_ ? parent_->GetNodeTM(t) : host::Matrix3();
}

host::Matrix3 SceneNode::GetObjectTM(host::TimeValue t) {
    return objectOffsetTM * GetNodeTM(t);
}

host::Matrix3 SceneNode::GetObjTMBeforeWSM(host::TimeValue t) {
    return GetObjectTM(t);
}

// No world-space modifiers exist in the headless scene, so nothing moves the object's data into
// world space and the matrix stays the object matrix.
host::Matrix3 SceneNode::GetObjTMAfterWSM(host::TimeValue t) {
    return GetObjectTM(t);
}

}  // namespace scene
