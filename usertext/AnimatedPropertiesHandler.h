#pragma once
// Animated properties from user text: "argument", "animation", "animation_vec2",
// "animation_vec3", "animation_vec4", "anim".

#include "model/PropertyList.h"
#include "usertext/FuncHandler.h"
#include "usertext/HandlerNames.h"

namespace lu {

class AnimatedPropertiesHandler : public FuncHandler {
public:
    static const HandlerNames& names();

    explicit AnimatedPropertiesHandler(model::PropertyList& destination) : destination_(destination) {}

    bool accepts(const std::string& name, const Values& values) override;
    // Appends the property, its keys in the order of the text. The failures name the count rule,
    // the key layout or the argument that was broken.
    void process(const std::string& name, const Values& values) override;

private:
    void processArgument(const std::string& name, const Values& values);
    void processFloatKeys(const std::string& name, const Values& values, bool withArgument);
    template <class Vec, int N>
    void processVectorKeys(const std::string& name, const Values& values);

    model::PropertyList& destination_;
};

}  // namespace lu
