#pragma once
// One node's user-defined text evaluated as the walk evaluates it, described for the artist who
// wrote it: the TYPE words, the node's own settings and the properties it gets.

#include <cstdint>
#include <string>
#include <string_view>

namespace exporter {

// Parses text with the node handlers under the given smoothNormals setting and returns the
// description, one item a line. A text the parser refuses throws nq::ExtException with the
// parser's own message, the one the export would report.
std::string describeNodeText(std::string_view text, std::uint32_t smoothNormalsSetting);

}  // namespace exporter
