#pragma once
// A fault found while reading a .nqf file: where (byte offset and record path) and what the
// reader expected there against what it found.

#include <cstdint>
#include <stdexcept>
#include <string>

namespace model::io {

class ReadError : public std::runtime_error {
public:
    ReadError(std::uint64_t offset, std::string record, std::string expected, std::string found);

    std::uint64_t offset() const noexcept { return offset_; }
    // The path of the record, e.g. "RENDER_NODES[2].indices[7]".
    const std::string& record() const noexcept { return record_; }
    const std::string& expected() const noexcept { return expected_; }
    const std::string& found() const noexcept { return found_; }

private:
    std::uint64_t offset_;
    std::string record_;
    std::string expected_;
    std::string found_;
};

}  // namespace model::io
