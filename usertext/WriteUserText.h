#pragma once
// The reverse of parseUserText: properties and arrays written back as user text, for when the
// text of a node is rewritten.

#include <string>

#include "model/PropertyList.h"
#include "usertext/ArrayHandler.h"

namespace lu {

// Appends to out, for each property, "\r\n" and its own statement ("name = value;"), then for
// each array "\r\n", "name = array(v1,v2,...);" with the numbers in "%f" form.
void writeUserText(const model::PropertyList& properties, const FloatArrays& arrays, std::string& out);

}  // namespace lu
