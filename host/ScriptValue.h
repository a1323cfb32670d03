#pragma once
// The host's script values and primitives, as far as the exporter uses them: a primitive is a
// named function of a list of values, registered when the library that defines it is loaded.

#include <functional>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <variant>

namespace host {

class INode;

// A script value: undefined, an integer, a text or a scene node.
using ScriptValue = std::variant<std::monostate, int, std::string, INode*>;

// Thrown by a primitive called with the wrong number of arguments.
class ArgCountError : public std::runtime_error {
public:
    ArgCountError(const std::string& function, int expected, int given)
        : std::runtime_error("Wrong number of arguments in " + function + ": expected " +
                             std::to_string(expected) + ", got " + std::to_string(given)),
          function_(function),
          expected_(expected),
          given_(given) {}
    const std::string& function() const noexcept { return function_; }
    int expected() const noexcept { return expected_; }
    int given() const noexcept { return given_; }

private:
    std::string function_;
    int expected_;
    int given_;
};

using PrimitiveFunction = ScriptValue (*)(std::span<const ScriptValue> arguments);

// Registers a primitive under its name for as long as the object lives.
class Primitive {
public:
    Primitive(const char* name, PrimitiveFunction function) : name_(name) { registry()[name_] = function; }
    ~Primitive() { registry().erase(name_); }
    Primitive(const Primitive&) = delete;
    Primitive& operator=(const Primitive&) = delete;

    // The primitive of that name, or null.
    static PrimitiveFunction find(const std::string& name) {
        auto it = registry().find(name);
        return it == registry().end() ? nullptr : it->second;
    }

private:
    static std::map<std::string, PrimitiveFunction>& registry() {
        static std::map<std::string, PrimitiveFunction> primitives;
        return primitives;
    }
    std::string name_;
};

}  // namespace host
