#pragma once
// The JSON layer of the scene loader: the whole text is checked first (syntax, UTF-8, nothing
// after the document), and a fault is reported with its line and column.

#include <simdjson.h>

namespace scene {

// Parses text into parser's document. Throws DocumentError (no document path) on any fault.
simdjson::dom::element parseJson(simdjson::dom::parser& parser, const simdjson::padded_string& text);

}  // namespace scene
