#include "core/Log.h"

#include <cstdio>
#include <mutex>

namespace nq {
namespace {

struct LogState {
    std::mutex lock;
    std::FILE* file = nullptr;
    bool toStderr = true;
    LogSink sink;

    ~LogState() {
        if (file) {
            std::fclose(file);
        }
    }
};

LogState& state() {
    static LogState s;
    return s;
}

}  // namespace

void nq_log(std::string_view source, int level, std::string_view text) {
    LogState& s = state();
    std::lock_guard<std::mutex> guard(s.lock);
    std::string line = fmt::format("[{}:{}] {}\n", source, level, text);
    if (s.toStderr) {
        std::fwrite(line.data(), 1, line.size(), stderr);
    }
    if (s.file) {
        std::fwrite(line.data(), 1, line.size(), s.file);
        std::fflush(s.file);
    }
    if (s.sink) {
        s.sink(source, level, text);
    }
}

bool setLogFile(const std::string& path) {
    LogState& s = state();
    std::lock_guard<std::mutex> guard(s.lock);
    if (s.file) {
        std::fclose(s.file);
        s.file = nullptr;
    }
    if (path.empty()) {
        return true;
    }
    s.file = std::fopen(path.c_str(), "ab");
    return s.file != nullptr;
}

void setLogToStderr(bool enabled) {
    LogState& s = state();
    std::lock_guard<std::mutex> guard(s.lock);
    s.toStderr = enabled;
}

LogSink setLogSink(LogSink sink) {
    LogState& s = state();
    std::lock_guard<std::mutex> guard(s.lock);
    std::swap(s.sink, sink);
    return sink;
}

}  // namespace nq
