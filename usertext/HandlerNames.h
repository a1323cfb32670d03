#pragma once
// The function names that a handler class accepts: a static table in the order the class lists
// them, and a set over it hashed by FNV-1a for the lookup of accepts().

#include <initializer_list>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/Fnv1a.h"
#include "usertext/FuncHandler.h"

namespace lu {

class HandlerNames {
public:
    HandlerNames(std::initializer_list<std::string_view> names) : table_(names), set_(names) {}

    const std::vector<std::string_view>& table() const noexcept { return table_; }
    bool contains(std::string_view name) const { return set_.find(name) != set_.end(); }
    // True if the kind, the first of the values, is one of the names.
    bool acceptsKind(const Values& values) const { return !values.empty() && contains(values.front()); }

private:
    std::vector<std::string_view> table_;
    std::unordered_set<std::string_view, nq::Fnv1aHash, std::equal_to<>> set_;
};

}  // namespace lu
