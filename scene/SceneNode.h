#pragma once
// A node of the headless scene. The loader fills the public fields; the host operations read
// them. Matrices are computed as the host computes them: the world matrix is the local matrix
// times the parent's world matrix, the object matrix the object offset times the world matrix.

#include <memory>
#include <string>
#include <vector>

#include "host/INode.h"

namespace scene {

class SceneMtl;

class SceneNode final : public host::INode {
public:
    // A root node when parent is null.
    explicit SceneNode(SceneNode* parent = nullptr) : parent_(parent) {}

    SceneNode& addChild();
    const std::vector<std::unique_ptr<SceneNode>>& children() const { return children_; }

    std::string name;
    bool hidden = false;
    bool groupHead = false;
    std::string userProps;
    host::Matrix3 localTM;           // relative to the parent
    host::Matrix3 objectOffsetTM;    // of the object, relative to the node
    host::Object* object = nullptr;  // belongs to the scene
    SceneMtl* material = nullptr;    // belongs to the scene

    std::string GetName() override { return name; }
    bool IsRootNode() override { return parent_ == nullptr; }
    host::INode* GetParentNode() override { return parent_; }
    int NumberOfChildren() override { return static_cast<int>(children_.size()); }
    host::INode* GetChildNode(int i) override;
    bool IsNodeHidden(bool checkLayer = false) override;
    bool IsGroupHead() override { return groupHead; }
    std::string GetUserPropBuffer() override { return userProps; }
    void SetUserPropBuffer(const std::string& text) override { userProps = text; }
    host::Mtl* GetMtl() override;
    host::ObjectState EvalWorldState(host::TimeValue t, bool evalHidden = true) override;
    host::Object* GetObjectRef() override { return object; }
    host::Matrix3 GetNodeTM(host::TimeValue t) override;
    host::Matrix3 GetParentTM(host::TimeValue t) override;
    host::Matrix3 GetObjectTM(host::TimeValue t) override;
    host::Matrix3 GetObjTMBeforeWSM(host::TimeValue t) override;
    host::Matrix3 GetObjTMAfterWSM(host::TimeValue t) override;

private:
    SceneNode* parent_;
    std::vector<std::unique_ptr<SceneNode>> children_;
};

}  // namespace scene
