#pragma once
// Numbers from the texts of user-text entries. A value is read the way a classic stream reads it,
// in the classic locale and without checking that the whole text was used: "1.5abc" is 1.5, and
// a text that does not start like a number is 0, with no failure.

#include <cstdlib>
#include <locale>
#include <sstream>
#include <string>

namespace lu {

// One stream per thread, set up once: making a stream costs more than reading a number.
inline std::istringstream& classicStream() {
    thread_local std::istringstream stream = [] {
        std::istringstream s;
        s.imbue(std::locale::classic());
        return s;
    }();
    return stream;
}

template <class T>
T numberFromText(const std::string& text) {
    std::istringstream& in = classicStream();
    in.clear();
    in.str(text);
    T value{};
    in >> value;
    return value;
}

// The argument number of the animated forms, read by atoi.
inline int argumentFromText(const std::string& text) {
    return std::atoi(text.c_str());
}

}  // namespace lu
