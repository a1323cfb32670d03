#pragma once
// The reader of version 10 .nqf files. It reads every record of every class and checks the file
// as it goes: the header, a string table of distinct strings used in order of first use, class
// names valid where they stand, the pre-order tree and its parent table, the groups, material
// entries, vertex and index blocks, and the handle count. It never reads past the buffer and
// checks every count against the bytes left before allocating anything.

#include <cstdint>
#include <span>

#include "model/io/NqfDocument.h"
#include "model/io/ReadError.h"

namespace model::io {

// Reads a whole file held in memory; throws ReadError at the first fault.
NqfDocument readNqf(std::span<const std::uint8_t> bytes);

}  // namespace model::io
