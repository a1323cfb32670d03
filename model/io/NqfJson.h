#pragma once
// The complete JSON dump of a read .nqf file: every field of every record, floats in their
// shortest form that reads back to the same value.

#include <string>

#include "model/io/NqfDocument.h"

namespace model::io {

std::string toJson(const NqfDocument& document);

}  // namespace model::io
