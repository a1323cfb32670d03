#pragma once
// The exporter's one way to report a problem. A report is formatted (printf style), logged under
// "NQFEXP" at level 8 and appended to the process-wide error list. Nothing is shown at that
// moment and the export goes on; any entry in the list keeps the file from being written.

#include <string>
#include <vector>

namespace exporter {

// The log source and level of every exporter message.
inline constexpr const char* kLogSource = "NQFEXP";
inline constexpr int kLogLevel = 8;
// A formatted report keeps at most this many characters.
inline constexpr std::size_t kMaxReportLength = 1024;

void reportError(const char* format, ...) __attribute__((format(printf, 1, 2)));
// Appends a text that is already formatted, cut to kMaxReportLength like the formatted ones.
void reportText(const std::string& text);

// The collected messages, oldest first.
const std::vector<std::string>& errorList();
// Hands the collected messages to the caller and empties the list, as the error list window does.
std::vector<std::string> takeErrors();
void clearErrors();

}  // namespace exporter
