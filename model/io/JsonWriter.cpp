#include "model/io/JsonWriter.h"

#include <cmath>

#include <fmt/format.h>

namespace model::io {

void JsonWriter::newline() {
    out_ += '\n';
    out_.append(2 * levels_.size(), ' ');
}

void JsonWriter::beforeValue() {
    if (afterKey_) {
        afterKey_ = false;
        return;
    }
    if (levels_.empty()) {
        return;
    }
    Level& level = levels_.back();
    if (!level.empty) {
        out_ += level.isInline ? ", " : ",";
    }
    level.empty = false;
    if (!level.isInline) {
        newline();
    }
}

void JsonWriter::beginObject() {
    beforeValue();
    out_ += '{';
    levels_.push_back({false});
}

void JsonWriter::endObject() {
    const bool empty = levels_.back().empty;
    levels_.pop_back();
    if (!empty) {
        newline();
    }
    out_ += '}';
}

void JsonWriter::beginArray(bool inlineArray) {
    beforeValue();
    out_ += '[';
    // Inside an inline array everything stays inline.
    levels_.push_back({inlineArray || (!levels_.empty() && levels_.back().isInline)});
}

void JsonWriter::endArray() {
    const Level level = levels_.back();
    levels_.pop_back();
    if (!level.empty && !level.isInline) {
        newline();
    }
    out_ += ']';
}

void JsonWriter::key(std::string_view name) {
    beforeValue();
    string(name);
    out_ += ": ";
    afterKey_ = true;
}

void JsonWriter::value(std::string_view text) {
    beforeValue();
    string(text);
}

void JsonWriter::string(std::string_view text) {
    out_ += '"';
    for (const char ch : text) {
        const auto c = static_cast<unsigned char>(ch);
        switch (c) {
            case '"':
                out_ += "\\\"";
                break;
            case '\\':
                out_ += "\\\\";
                break;
            case '\n':
                out_ += "\\n";
                break;
            case '\r':
                out_ += "\\r";
                break;
            case '\t':
                out_ += "\\t";
                break;
            default:
                if (c < 0x20 || c == 0x7F) {
                    out_ += fmt::format("\\u{:04x}", c);
                } else {
                    out_ += ch;
                }
        }
    }
    out_ += '"';
}

void JsonWriter::value(std::uint64_t number) {
    beforeValue();
    out_ += fmt::format("{}", number);
}

namespace {

template <class F>
std::string number(F v) {
    if (std::isnan(v)) {
        return "\"nan\"";
    }
    if (std::isinf(v)) {
        return v > 0 ? "\"inf\"" : "\"-inf\"";
    }
    return fmt::format("{}", v);
}

}  // namespace

void JsonWriter::value(double number_) {
    beforeValue();
    out_ += number(number_);
}

void JsonWriter::value(float number_) {
    beforeValue();
    out_ += number(number_);
}

void JsonWriter::value(bool flag) {
    beforeValue();
    out_ += flag ? "true" : "false";
}

void JsonWriter::null() {
    beforeValue();
    out_ += "null";
}

}  // namespace model::io
