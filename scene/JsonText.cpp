#include "scene/JsonText.h"

#include <optional>
#include <string_view>

#include "scene/DocumentError.h"

namespace scene {
namespace {

namespace od = simdjson::ondemand;

// Deeper than this the locating walk gives up; the full parse has the same limit.
constexpr int maxLocateDepth = 1000;

// Length of the well-formed UTF-8 character at s[i], or 0 when none starts there.
std::size_t utf8CharLength(std::string_view s, std::size_t i) {
    auto at = [&](std::size_t k) { return k < s.size() ? static_cast<unsigned char>(s[k]) : 0u; };
    auto cont = [&](std::size_t k) { return (at(k) & 0xC0) == 0x80; };
    unsigned c = at(i);
    if (c < 0x80) {
        return 1;
    }
    if (c >= 0xC2 && c <= 0xDF) {
        return cont(i + 1) ? 2 : 0;
    }
    if (c >= 0xE0 && c <= 0xEF) {
        unsigned c1 = at(i + 1);
        bool ok = cont(i + 1) && cont(i + 2) && !(c == 0xE0 && c1 < 0xA0) && !(c == 0xED && c1 >= 0xA0);
        return ok ? 3 : 0;
    }
    if (c >= 0xF0 && c <= 0xF4) {
        unsigned c1 = at(i + 1);
        bool ok = cont(i + 1) && cont(i + 2) && cont(i + 3) && !(c == 0xF0 && c1 < 0x90) &&
                  !(c == 0xF4 && c1 >= 0x90);
        return ok ? 4 : 0;
    }
    return 0;
}

std::size_t firstInvalidUtf8(std::string_view s) {
    std::size_t i = 0;
    while (i < s.size()) {
        std::size_t n = utf8CharLength(s, i);
        if (n == 0) {
            return i;
        }
        i += n;
    }
    return s.size();
}

// Visits every value of the document through the on-demand parser, whose position is known
// when it stops on a fault.
simdjson::error_code visit(od::value value, int depth) {
    if (depth > maxLocateDepth) {
        return simdjson::DEPTH_ERROR;
    }
    od::json_type type;
    if (auto e = value.type().get(type)) {
        return e;
    }
    switch (type) {
        case od::json_type::object: {
            od::object object;
            if (auto e = value.get_object().get(object)) {
                return e;
            }
            for (auto field : object) {
                std::string_view key;
                od::value child;
                if (auto e = field.unescaped_key().get(key)) {
                    return e;
                }
                if (auto e = field.value().get(child)) {
                    return e;
                }
                if (auto e = visit(child, depth + 1)) {
                    return e;
                }
            }
            return simdjson::SUCCESS;
        }
        case od::json_type::array: {
            od::array array;
            if (auto e = value.get_array().get(array)) {
                return e;
            }
            for (auto element : array) {
                od::value child;
                if (auto e = element.get(child)) {
                    return e;
                }
                if (auto e = visit(child, depth + 1)) {
                    return e;
                }
            }
            return simdjson::SUCCESS;
        }
        case od::json_type::string: {
            std::string_view s;
            return value.get_string().get(s);
        }
        case od::json_type::number: {
            double d;
            return value.get_double().get(d);
        }
        case od::json_type::boolean: {
            bool b;
            return value.get_bool().get(b);
        }
        case od::json_type::null: {
            bool isNull;
            if (auto e = value.is_null().get(isNull)) {
                return e;
            }
            return isNull ? simdjson::SUCCESS : simdjson::N_ATOM_ERROR;
        }
    }
    return simdjson::SUCCESS;
}

struct Located {
    std::optional<std::size_t> offset;
    bool trailing = false;  // the document itself was whole and something follows it
};

Located locateFault(const simdjson::padded_string& text) {
    od::parser parser;
    od::document doc;
    if (parser.iterate(text).get(doc)) {
        return {};
    }
    od::value root;
    simdjson::error_code e = doc.get_value().get(root);
    if (!e) {
        e = visit(root, 0);
    }
    if (e == simdjson::DEPTH_ERROR) {
        return {};
    }
    const char* where = nullptr;
    if (doc.current_location().get(where)) {
        return {text.size(), false};
    }
    return {static_cast<std::size_t>(where - text.data()), !e};
}

std::string describeFault(simdjson::error_code code) {
    switch (code) {
        case simdjson::STRING_ERROR:
            return "invalid string";
        case simdjson::UNCLOSED_STRING:
            return "unclosed string";
        case simdjson::UNESCAPED_CHARS:
            return "control character in a string";
        case simdjson::NUMBER_ERROR:
            return "invalid number";
        case simdjson::T_ATOM_ERROR:
        case simdjson::F_ATOM_ERROR:
        case simdjson::N_ATOM_ERROR:
            return "invalid literal: expected true, false or null";
        default:
            return "JSON syntax error: a missing or extra comma, colon, bracket or brace";
    }
}

}  // namespace

simdjson::dom::element parseJson(simdjson::dom::parser& parser, const simdjson::padded_string& text) {
    simdjson::dom::element root;
    simdjson::error_code code = parser.parse(text).get(root);
    if (!code) {
        return root;
    }
    std::string_view view(text.data(), text.size());
    int line = 0;
    int column = 0;
    switch (code) {
        case simdjson::EMPTY:
            throw DocumentError("", "the document is empty");
        case simdjson::DEPTH_ERROR:
            throw DocumentError("", "the document nests deeper than 1024 levels");
        case simdjson::CAPACITY:
            throw DocumentError("", "the document is too large");
        case simdjson::MEMALLOC:
            throw DocumentError("", "out of memory");
        case simdjson::UTF8_ERROR:
            textPosition(view, firstInvalidUtf8(view), line, column);
            throw DocumentError("", "invalid UTF-8", line, column);
        default:
            break;
    }
    Located fault = locateFault(text);
    if (fault.offset) {
        textPosition(view, *fault.offset, line, column);
    }
    throw DocumentError("", fault.trailing ? "unexpected text after the document" : describeFault(code), line,
                        column);
}

}  // namespace scene
