#pragma once
// Splits a scene document at its top-level nodes, so that each node can be parsed and read on its
// own while the rest of the document is parsed as a small skeleton.

#include <optional>
#include <string_view>
#include <vector>

#include <simdjson.h>

namespace scene {

struct NodeSlices {
    // The document with the items of its "nodes" array left out ("nodes": []).
    simdjson::padded_string skeleton;
    // The text of each item of "nodes", in order, inside the document's own buffer (whose padding
    // lets the parser read each slice in place).
    std::vector<std::string_view> nodes;
};

// Nothing when the document is not an object whose "nodes" field, given once, is a non-empty
// array of objects, or when the split meets anything else it does not expect. It checks only the
// commas and brackets between the items: the skeleton and the items must each be parsed whole,
// and only when all of them are faultless is the document.
std::optional<NodeSlices> sliceNodes(const simdjson::padded_string& text);

}  // namespace scene
