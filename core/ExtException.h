#pragma once
// The exception of the model library and the pipeline: a message with the source path and line.

#include <source_location>
#include <stdexcept>
#include <string>

namespace nq {

class ExtException : public std::runtime_error {
public:
    ExtException(std::string message, std::string sourcePath, int line)
        : std::runtime_error(message),
          message_(std::move(message)),
          source_(std::move(sourcePath)),
          line_(line) {}
    explicit ExtException(std::string message, std::source_location where = std::source_location::current())
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
