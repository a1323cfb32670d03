#pragma once
// Starting an external program the way the host's viewer start does: one parameter text that is
// split into words, a working directory, and a result above 32 on success.

#include <string>
#include <string_view>
#include <vector>

namespace scene {

// Splits a command line into words by the host's rules: blanks separate words, double quotes
// group blanks into a word, 2n backslashes before a quote stand for n backslashes, 2n+1 for n
// and a literal quote, and backslashes before anything else stand as they are.
std::vector<std::string> splitCommandLine(std::string_view line);

// Starts file (looked up in PATH when it has no "/") with the words of parameters, in directory
// when it is not empty, without waiting for it. Returns 42 when it started, otherwise one of the
// host's error numbers, all 32 or below (SE_ERR_* of host/Constants.h).
int startProgram(const std::string& file, const std::string& parameters, const std::string& directory);

}  // namespace scene
