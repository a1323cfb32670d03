#include "model/io/ReadError.h"

#include <fmt/format.h>

namespace model::io {

ReadError::ReadError(std::uint64_t offset, std::string record, std::string expected, std::string found)
    : std::runtime_error(
          fmt::format("error at byte {} in {}: expected {}, found {}", offset, record, expected, found)),
      offset_(offset),
      record_(std::move(record)),
      expected_(std::move(expected)),
      found_(std::move(found)) {}

}  // namespace model::io
