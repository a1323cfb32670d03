#include "scene/DocumentError.h"

#include <algorithm>

#include <fmt/format.h>

namespace scene {
namespace {

std::string placeAndMessage(const std::string& path, const std::string& message, int line, int column) {
    if (!path.empty()) {
        return path + ": " + message;
    }
    if (line > 0) {
        return fmt::format("line {}, column {}: {}", line, column, message);
    }
    return message;
}

}  // namespace

DocumentError::DocumentError(std::string path, std::string message, int line, int column)
    : std::runtime_error(placeAndMessage(path, message, line, column)),
      path_(std::move(path)),
      message_(std::move(message)),
      line_(line),
      column_(column) {}

std::string DocumentError::describe(std::string_view documentName) const {
    if (line_ > 0) {
        return fmt::format("{}:{}:{}: {}{}{}", documentName, line_, column_, path_, path_.empty() ? "" : ": ",
                           message_);
    }
    return fmt::format("{}: {}", documentName, what());
}

void textPosition(std::string_view text, std::size_t offset, int& line, int& column) {
    offset = std::min(offset, text.size());
    line = 1;
    column = 1;
    for (std::size_t i = 0; i < offset; ++i) {
        unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == '\n') {
            ++line;
            column = 1;
        } else if ((c & 0xC0) != 0x80) {
            ++column;
        }
    }
}

}  // namespace scene
