#pragma once
// A node of the host's scene: a name, a place in the hierarchy, a transform, at most one
// object and at most one material, and the user-defined property text. The host's root node
// is invisible and carries no object.
//
// Matrices follow the host: GetNodeTM is the node's world matrix, its local matrix times its
// parent's world matrix; the object matrix is the object offset times the node matrix.

#include <string>

#include "host/Matrix3.h"
#include "host/Object.h"
#include "host/Types.h"

namespace host {

class Mtl;

class INode {
public:
    virtual ~INode() = default;

    virtual std::string GetName() = 0;
    virtual bool IsRootNode() = 0;
    // Null for the root node.
    virtual INode* GetParentNode() = 0;
    virtual int NumberOfChildren() = 0;
    // Child i, 0-based, in the scene's order; null outside the range.
    virtual INode* GetChildNode(int i) = 0;

    // Whether the node itself is hidden. With checkLayer, a node on a hidden layer counts as
    // hidden as well.
    virtual bool IsNodeHidden(bool checkLayer = false) = 0;
    virtual bool IsGroupHead() = 0;

    // The user-defined property text.
    virtual std::string GetUserPropBuffer() = 0;
    virtual void SetUserPropBuffer(const std::string& text) = 0;

    // The material, or null.
    virtual Mtl* GetMtl() = 0;

    // The object at the top of the node's modifier stack at time t; its obj may be null.
    virtual ObjectState EvalWorldState(TimeValue t, bool evalHidden = true) = 0;
    // The object the node references, before any modifier is applied.
    virtual Object* GetObjectRef() = 0;

    // World matrix of the node.
    virtual Matrix3 GetNodeTM(TimeValue t) = 0;
    // World matrix of the parent; the identity for the root's children.
    virtual Matrix3 GetParentTM(TimeValue t) = 0;
    // Object offset times node matrix: where the object's own space lies in the world.
    virtual Matrix3 GetObjectTM(TimeValue t) = 0;
    // The object matrix before and after world-space modifiers; the identity after them when
    // such a modifier has moved the object's data into world space.
    virtual Matrix3 GetObjTMBeforeWSM(TimeValue t) = 0;
    virtual Matrix3 GetObjTMAfterWSM(TimeValue t) = 0;
};

}  // namespace host
