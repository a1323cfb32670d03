#pragma once
// The log: every line has a source name, a level and a text. Lines go to stderr unless that is
// switched off, to a file when one is configured, and to a capture function when one is set
// (tests and hosts that show the log in a window).

#include <functional>
#include <string>
#include <string_view>

#include <fmt/format.h>

namespace nq {

using LogSink = std::function<void(std::string_view source, int level, std::string_view text)>;

void nq_log(std::string_view source, int level, std::string_view text);

template <class... Args>
void nq_logf(std::string_view source, int level, fmt::format_string<Args...> format, Args&&... args) {
    nq_log(source, level, fmt::format(format, std::forward<Args>(args)...));
}

// Sends log lines to a file as well (appending); an empty path stops that. Returns false if the
// file cannot be opened.
bool setLogFile(const std::string& path);
void setLogToStderr(bool enabled);
// Replaces the capture function; returns the previous one.
LogSink setLogSink(LogSink sink);

}  // namespace nq

using nq::nq_log;
