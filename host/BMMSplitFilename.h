#pragma once
// The host's path splitter.

#include <string>

namespace host {

// Splits path into its directory, which keeps its trailing separator (and a leading drive such
// as "C:"), the file name without its extension, and the extension with its dot. Both "/" and
// "\" separate directories; the extension starts at the last dot of the file name. Any output
// may be null.
void BMMSplitFilename(const std::string& path, std::string* dir, std::string* file, std::string* ext);

}  // namespace host
