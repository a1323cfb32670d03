#include "scene/DocumentReader.h"

#include <cmath>
#include <limits>

#include <fmt/format.h>

namespace scene {

std::string classText(host::Class_ID id) {
    return fmt::format("(0x{:X}, 0x{:X})", id.PartA(), id.PartB());
}

void DocumentReader::fail(const std::string& message) const {
    throw DocumentError(pathText(), message);
}

std::string DocumentReader::pathText() const {
    std::string text;
    for (const PathPart& part : path_) {
        if (part.key.data() == nullptr) {
            text += fmt::format("[{}]", part.index);
        } else {
            if (!text.empty()) {
                text += '.';
            }
            text += part.key;
        }
    }
    return text;
}

std::string DocumentReader::readString(element value) {
    std::string_view text;
    if (value.get_string().get(text)) {
        fail("expected a string");
    }
    return std::string(text);
}

bool DocumentReader::readBool(element value) {
    bool flag = false;
    if (value.get_bool().get(flag)) {
        fail("expected true or false");
    }
    return flag;
}

// Integers may be written with a fraction of zero (1e3, 160.0); beyond 64 bits they are merely
// out of range.
std::int64_t DocumentReader::readInteger(element value, std::int64_t min, std::int64_t max) {
    std::int64_t number = 0;
    if (value.get_int64().get(number)) {
        std::uint64_t large = 0;
        double real = 0;
        if (!value.get_uint64().get(large)) {
            number = std::numeric_limits<std::int64_t>::max();
        } else if (!value.get_double().get(real) && real == std::floor(real)) {
            number = real < -9e18  ? std::numeric_limits<std::int64_t>::min()
                     : real > 9e18 ? std::numeric_limits<std::int64_t>::max()
                                   : static_cast<std::int64_t>(real);
        } else {
            fail("expected an integer");
        }
    }
    if (number < min || number > max) {
        fail(fmt::format("expected an integer from {} to {}", min, max));
    }
    return number;
}

float DocumentReader::readFloat(element value) {
    double number = 0;
    if (value.get_double().get(number)) {
        fail("expected a number");
    }
    if (std::fabs(number) > std::numeric_limits<float>::max()) {
        fail("number out of the range of a 32-bit float");
    }
    return static_cast<float>(number);
}

// A class id part is a number or a text of hexadecimal digits after "0x", as in "0x876234".
std::uint32_t DocumentReader::readClassPart(element value) {
    const char* expected = "expected a 32-bit unsigned number or a hexadecimal text such as \"0x876234\"";
    std::string_view text;
    if (value.get_string().get(text)) {
        std::uint64_t number = 0;
        if (value.get_uint64().get(number) || number > 0xFFFFFFFFu) {
            fail(expected);
        }
        return static_cast<std::uint32_t>(number);
    }
    if (text.size() < 3 || text.size() > 10 || text[0] != '0' || (text[1] != 'x' && text[1] != 'X')) {
        fail(expected);
    }
    std::uint32_t number = 0;
    for (char c : text.substr(2)) {
        int digit = c >= '0' && c <= '9'   ? c - '0'
                    : c >= 'a' && c <= 'f' ? c - 'a' + 10
                    : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                           : -1;
        if (digit < 0) {
            fail(expected);
        }
        number = number * 16 + static_cast<std::uint32_t>(digit);
    }
    return number;
}

host::Class_ID DocumentReader::readClassId(element value) {
    simdjson::dom::array array;
    if (value.get_array().get(array) || array.size() != 2) {
        fail("expected a class id: a pair of parts such as [\"0x876234\", \"0x0\"]");
    }
    std::uint32_t parts[2] = {0, 0};
    readArray(value, [&](std::size_t i, element part) { parts[i] = readClassPart(part); });
    return host::Class_ID(parts[0], parts[1]);
}

bool DocumentReader::tryReadFloats(simdjson::dom::array array, float* out) {
    for (element item : array) {
        double number = 0;
        if (item.get_double().get(number) || std::fabs(number) > std::numeric_limits<float>::max()) {
            return false;
        }
        *out++ = static_cast<float>(number);
    }
    return true;
}

bool DocumentReader::tryReadIndices(simdjson::dom::array array, std::int64_t max, std::uint32_t* out) {
    for (element item : array) {
        std::int64_t number = 0;
        if (item.get_int64().get(number) || number < 0 || number > max) {
            return false;
        }
        *out++ = static_cast<std::uint32_t>(number);
    }
    return true;
}

host::Point3 DocumentReader::readPoint(element value) {
    simdjson::dom::array array;
    if (value.get_array().get(array) || array.size() != 3) {
        fail("expected 3 numbers");
    }
    host::Point3 point;
    float numbers[3];
    if (tryReadFloats(array, numbers)) {
        return {numbers[0], numbers[1], numbers[2]};
    }
    readArray(value, [&](std::size_t i, element c) { point[static_cast<int>(i)] = readFloat(c); });
    return point;
}

// Four rows of three numbers, or of four whose last column is 0, 0, 0, 1: the host's matrices
// are affine.
host::Matrix3 DocumentReader::readMatrix(element value) {
    simdjson::dom::array rows;
    if (value.get_array().get(rows) || rows.size() != 4) {
        fail("expected a matrix of 4 rows");
    }
    host::Matrix3 matrix;
    readArray(value, [&](std::size_t row, element numbers) {
        simdjson::dom::array array;
        if (numbers.get_array().get(array) || (array.size() != 3 && array.size() != 4)) {
            fail("expected a row of 3 or 4 numbers");
        }
        host::Point3 point;
        readArray(numbers, [&](std::size_t col, element number) {
            float f = readFloat(number);
            if (col < 3) {
                point[static_cast<int>(col)] = f;
            } else if (f != (row == 3 ? 1.0f : 0.0f)) {
                fail(fmt::format("expected {}: the last column of a 4 by 4 matrix must be 0, 0, 0, 1",
                                 row == 3 ? 1 : 0));
            }
        });
        matrix.SetRow(static_cast<int>(row), point);
    });
    return matrix;
}

double DocumentReader::readDouble(element value) {
    double number = 0;
    if (value.get_double().get(number)) {
        fail("expected a number");
    }
    return number;
}

}  // namespace scene
