#pragma once
// The exception of the model library and the pipeline: a message with the source path and line.

#include <stdexcept>
#include <string>
#include <version>
#if defined(__cpp_lib_source_location)
#include <source_location>
#endif

namespace nq {

#if defined(__cpp_lib_source_location)
using SourceLocation = std::source_location;
#else
// For compilers whose standard library lacks std::source_location (clang 14 with libstdc++ 12,
// used for the fuzz targets): the same two answers from the compiler's builtins.
class SourceLocation {
public:
    static constexpr SourceLocation current(const char* file = __builtin_FILE(),
                                            int line = __builtin_LINE()) noexcept {
        SourceLocation where;
        where.file_ = file;
        where.line_ = line;
        return where;
    }
    constexpr const char* file_name() const noexcept { return file_; }
    constexpr unsigned line() const noexcept { return static_cast<unsigned>(line_); }

private:
    const char* file_ = "";
    int line_ = 0;
};
#endif

class ExtException : public std::runtime_error {
public:
    ExtException(std::string message, std::string sourcePath, int line)
        : std::runtime_error(message),
          message_(std::move(message)),
          source_(std::move(sourcePath)),
          line_(line) {}
    explicit ExtException(std::string message, SourceLocation where = SourceLocation::current())
        : ExtException(std::move(message), where.file_name(), static_cast<int>(where.line())) {}

    const std::string& message() const noexcept { return message_; }
    const std::string& sourcePath() const noexcept { return source_; }
    int line() const noexcept { return line_; }

private:
    std::string message_;
    std::string source_;
    int line_;
};

}  // namespace nq
