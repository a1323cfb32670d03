#pragma once
// The exporter's script primitives.

#include <span>

#include "host/ScriptValue.h"

namespace exporter {

// ExportToNQF(path): exports the running host's scene to path. Returns 1 whatever the export did.
// Any other number of arguments throws host::ArgCountError("ExportToNQF", 1, count).
host::ScriptValue ExportToNQF(std::span<const host::ScriptValue> arguments);

// SetNodeType(node, text): rewrites the TYPE key of the node's user-defined text to text, keeping
// every other property. A node without text is left alone and gives 0. Any other number of
// arguments throws host::ArgCountError("SetNodeType", 2, count).
host::ScriptValue SetNodeType(std::span<const host::ScriptValue> arguments);

}  // namespace exporter
