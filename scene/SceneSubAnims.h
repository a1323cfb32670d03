#pragma once
// The sub-animatable tree of a headless material or map: named groups of parameters down to the
// parameters' controllers, as the host shows them in its track view. An entry may hold null, a
// parameter without controller.

#include <memory>
#include <string>
#include <vector>

#include "host/Animatable.h"

namespace scene {

class SubAnimTree {
public:
    int count() const { return static_cast<int>(entries_.size()); }
    host::Animatable* child(int i) const;
    std::string name(int i) const;
    // Puts object at the path of names, making the groups on the way. The first entry of the last
    // name is replaced; a name on the way that holds no group gets one in its place.
    void put(const std::vector<std::string>& path, std::unique_ptr<host::Animatable> object);

private:
    struct Entry {
        std::string name;
        std::unique_ptr<host::Animatable> object;
    };
    std::vector<Entry> entries_;
};

// A group of parameters: a parameter block or a part of a material's tree.
class SceneParamGroup final : public host::Animatable {
public:
    host::Class_ID ClassID() override { return host::Class_ID(0, 0); }
    host::SClass_ID SuperClassID() override { return 0x82; }  // PARAMETER_BLOCK2_CLASS_ID
    int NumSubs() override { return subAnims.count(); }
    host::Animatable* SubAnim(int i) override { return subAnims.child(i); }
    std::string SubAnimName(int i) override { return subAnims.name(i); }

    SubAnimTree subAnims;
};

}  // namespace scene
