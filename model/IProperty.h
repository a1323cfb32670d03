#pragma once
// A named, typed value of a node or a material: static, or animated along one argument.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "model/IObject.h"

namespace io {
class IBinaryFileW;
class IBinaryFileR;
}  // namespace io

namespace model {

class IPropertyVisitor;

class IProperty : public IObject {
public:
    ~IProperty() override = default;

    // The registry key of the class, which is also its name in the file.
    virtual std::string_view className() const = 0;
    virtual bool isAnimated() const = 0;
    // One Lua-like statement, "name = value;".
    virtual std::string toText() const = 0;
    virtual void accept(IPropertyVisitor& visitor) = 0;
    // Reads back what save wrote, class name included; a different class name throws.
    virtual void load(io::IBinaryFileR& file) = 0;
    // The property record: class name, name, value.
    virtual void save(io::IBinaryFileW& file) const = 0;
    // Same name, same class, values equal within 1e-5 for floats and exactly otherwise.
    virtual bool equals(const IProperty& other) const = 0;

    std::string_view tagText() const { return std::string_view(tag.data(), tag.size()); }

    // Four letters naming the class, not terminated.
    std::array<char, 4> tag{};
    std::string name = "UnNamed";

protected:
    explicit IProperty(std::string_view fourLetters);
    IProperty(const IProperty&) = default;
    IProperty& operator=(const IProperty&) = default;

    // The shared head of every record, and its mirror.
    void saveHead(io::IBinaryFileW& file) const;
    void loadHead(io::IBinaryFileR& file);
    // True when other has this name and this class.
    bool sameKind(const IProperty& other) const;
};

class IStaticProperty : public IProperty {
public:
    bool isAnimated() const override { return false; }

protected:
    using IProperty::IProperty;
};

class IAnimatedProperty : public IProperty {
public:
    // The argument of a property that is not yet bound to one.
    static constexpr std::uint32_t kNoArgument = 0xFFFFFFFFu;

    bool isAnimated() const override { return true; }

    std::uint32_t argument = kNoArgument;

protected:
    using IProperty::IProperty;
};

}  // namespace model
