#pragma once
// The host's basic value types. Time is counted in ticks (see TIME_TICKSPERSEC in
// host/Constants.h); a super class id and the two parts of a class id are 32-bit numbers.

#include <cstdint>

namespace host {

using TimeValue = std::int32_t;
using SClass_ID = std::uint32_t;

// An opaque window handle. A headless host has no windows and hands out null.
struct WindowHandle;
using HWND = WindowHandle*;
// The module handle of a loaded plug-in library, opaque likewise.
struct ModuleHandle;
using HINSTANCE = ModuleHandle*;

// The class of a host object: two 32-bit parts, compared as a pair.
class Class_ID {
public:
    constexpr Class_ID() = default;
    constexpr Class_ID(std::uint32_t a, std::uint32_t b) : a_(a), b_(b) {}

    constexpr std::uint32_t PartA() const { return a_; }
    constexpr std::uint32_t PartB() const { return b_; }

    constexpr bool operator==(const Class_ID&) const = default;
    constexpr auto operator<=>(const Class_ID&) const = default;

private:
    std::uint32_t a_ = 0xFFFFFFFF;
    std::uint32_t b_ = 0xFFFFFFFF;
};

}  // namespace host
