#pragma once
// The base of the host's scene objects, materials and custom attributes: what class an object
// is, the interfaces it offers, and the custom attributes attached to it.
//
// Text crosses this interface as UTF-8 std::string. A host whose own text is wide converts it
// at once, in its adapter, so nothing past this boundary sees wide text.

#include <cstdint>
#include <string>

#include "host/Types.h"

namespace host {

class ICustAttribContainer;
class IParamBlock2;

class Animatable {
public:
    virtual ~Animatable() = default;

    virtual Class_ID ClassID() = 0;
    virtual SClass_ID SuperClassID() = 0;
    // The interface of the given id (for instance I_SKIN of host/Constants.h), or null when
    // the object offers none. The pointer is of the interface's own class, passed as void* as
    // the host passes it: the caller casts it back to that class. ReleaseInterface ends its use.
    virtual void* GetInterface(std::uint32_t id) {
        (void)id;
        return nullptr;
    }
    virtual void ReleaseInterface(std::uint32_t id, void* object) {
        (void)id;
        (void)object;
    }
    // The custom attributes attached to this object, or null when it has none.
    virtual ICustAttribContainer* GetCustAttribContainer() { return nullptr; }

    // The sub-animatables: the tree of parameter groups, parameters and their controllers under
    // this object, each child with its name. A child may be null (a parameter without controller).
    virtual int NumSubs() { return 0; }
    virtual Animatable* SubAnim(int i) {
        (void)i;
        return nullptr;
    }
    virtual std::string SubAnimName(int i) {
        (void)i;
        return {};
    }

    // The parameter blocks of this object, 0-based; null outside the range.
    virtual int NumParamBlocks() { return 0; }
    virtual IParamBlock2* GetParamBlock(int i) {
        (void)i;
        return nullptr;
    }
};

// One custom attribute: a block of data that a plug-in attaches to an object, told by its class.
class CustAttrib : public Animatable {
public:
    virtual std::string GetName() = 0;
};

class ICustAttribContainer {
public:
    virtual ~ICustAttribContainer() = default;
    virtual int GetNumCustAttribs() = 0;
    // Attribute i, 0-based; null outside the range.
    virtual CustAttrib* GetCustAttrib(int i) = 0;
};

}  // namespace host
