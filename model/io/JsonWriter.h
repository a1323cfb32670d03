#pragma once
// A small JSON writer: objects and arrays with commas and indentation handled, strings escaped,
// numbers in their shortest exact form. Arrays opened as `inline` stay on one line, which keeps
// long runs of numbers (vertices, matrices) readable.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace model::io {

class JsonWriter {
public:
    explicit JsonWriter(std::string& out) : out_(out) {}

    void beginObject();
    void endObject();
    void beginArray(bool inlineArray = false);
    void endArray();
    void key(std::string_view name);

    void value(std::string_view text);
    void value(const char* text) { value(std::string_view(text)); }
    void value(std::uint64_t number);
    void value(std::uint32_t number) { value(std::uint64_t{number}); }
    void value(std::uint16_t number) { value(std::uint64_t{number}); }
    void value(std::uint8_t number) { value(std::uint64_t{number}); }
    // Floats and doubles round-trip exactly; NaN and infinities, which JSON lacks, are written as
    // the strings "nan", "inf" and "-inf".
    void value(double number);
    void value(float number);
    void value(bool flag);
    void null();

    template <class Range>
    void array(const Range& values) {
        beginArray(true);
        for (const auto& v : values) {
            value(v);
        }
        endArray();
    }

private:
    struct Level {
        bool isInline;
        bool empty = true;
    };
    void beforeValue();
    void string(std::string_view text);
    void newline();

    std::string& out_;
    std::vector<Level> levels_;
    bool afterKey_ = false;
};

}  // namespace model::io
