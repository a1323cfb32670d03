#pragma once
// User-defined text: the per-object settings that artists type into a scene, evaluated as the
// fields of one Lua table. Each field becomes an entry (its key, and a list of texts whose first
// one names the kind) that goes to the first handler accepting it.

#include <string>
#include <string_view>

#include "usertext/FuncHandler.h"

namespace lu {

// Evaluates text and hands its entries to the handlers, in the order of Lua's own walk of the
// table (not the order of the text). Failures are nq::ExtException with the texts
// "Parser error:" and Lua's message, "Parser error." when the text does not leave a table, or
// "Invalid right side of expression for variable: '<key>'."; what the handlers did for entries
// before the failure stays. The Lua stack is left as it was in every case.
void parseUserText(std::string_view text, const FuncHandlers& handlers);

// Deletes every "babylonjs_GUID = xxxx-xxxx-xxxx-xxxx-xxxx" fragment, which some scene tools add to
// the text and which Lua could not compile.
std::string removeGuidFragments(std::string_view text);

}  // namespace lu
