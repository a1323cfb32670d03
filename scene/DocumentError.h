#pragma once
// A fault in a scene document: where it is, as a document path ("nodes[3].children[0].userProps")
// or as a line and column for faults of the JSON text itself, and what is wrong.

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace scene {

class DocumentError : public std::runtime_error {
public:
    // line and column are 1-based; 0 when the fault has no place in the text.
    DocumentError(std::string path, std::string message, int line = 0, int column = 0);

    const std::string& path() const noexcept { return path_; }
    const std::string& message() const noexcept { return message_; }
    int line() const noexcept { return line_; }
    int column() const noexcept { return column_; }

    // The fault as one line for the user, led by the document's file name:
    // "ship.json: nodes[3].userProps: expected a string", "ship.json:4:12: invalid number".
    std::string describe(std::string_view documentName) const;

private:
    std::string path_;
    std::string message_;
    int line_;
    int column_;
};

// The 1-based line and column of a byte offset in text; columns count characters, not bytes.
void textPosition(std::string_view text, std::size_t offset, int& line, int& column);

}  // namespace scene
