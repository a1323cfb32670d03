#pragma once
// The statistics an exporter shows after a good export, taken from the text of its statistics box
// into JSON for scripts.

#include <string>
#include <string_view>

namespace scene {

// The text holds one entry a line, "name: value", each level of nesting indented by two more
// spaces. The result is a JSON array of {"name", "value", "children"} objects in the order of the
// lines; a value that is a whole decimal number is written as a number, anything else as a
// string. Lines that are not "name: value" are kept as entries with an empty value.
std::string statisticsTextToJson(std::string_view text);

}  // namespace scene
