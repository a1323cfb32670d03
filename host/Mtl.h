#pragma once
// A scene material. A multi-material holds sub-materials by index; a slot may be empty.

#include <string>

#include "host/Animatable.h"

namespace host {

class Mtl : public Animatable {
public:
    SClass_ID SuperClassID() override { return 0xC00; }  // MATERIAL_CLASS_ID
    virtual std::string GetName() = 0;
    virtual int NumSubMtls() { return 0; }
    // Sub-material i, or null for an empty slot or an index outside the range.
    virtual Mtl* GetSubMtl(int i) {
        (void)i;
        return nullptr;
    }
};

}  // namespace host
