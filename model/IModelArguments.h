#pragma once
// Values of the model's arguments, as the renderer would set them.

#include <cstdint>

namespace model {

// The argument number of something that is not bound to an argument.
inline constexpr std::uint32_t kNoArgument = 0xFFFFFFFFu;

class IModelArguments {
public:
    virtual ~IModelArguments() = default;
    virtual float value(std::uint32_t argument) const = 0;
};

// Every argument at 0, for code that needs an argument source but no real values.
class DummyArguments final : public IModelArguments {
public:
    float value(std::uint32_t) const override { return 0.0f; }
};

}  // namespace model
