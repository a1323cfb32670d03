#include "usertext/ParseUserText.h"

#include <regex>

#include <lua.hpp>

#include "core/ExtException.h"
#include "core/LuaState.h"
#include "usertext/ParamsLuaWrapper.h"

namespace lu {
namespace {

// Nested tables deeper than this are not walked: the functions of aux_func.lua nest two levels.
constexpr int kMaxNesting = 100;
// What looking at one element from C costs, in instructions of the budget: about what the virtual
// machine spends on a few instructions.
constexpr std::uint64_t kElementCost = 8;

// Appends the texts of a table's elements 1 to its length to the entry at `entry`, walking
// nested tables in place. Runs inside the state's protected call.
void flatten(lua_State* L, int table, int entry, int* count, int depth) {
    if (depth > kMaxNesting) {
        luaL_error(L, "tables nested deeper than %d levels", kMaxNesting);
    }
    luaL_checkstack(L, 4, "tables nested too deeply");
    const int length = static_cast<int>(lua_objlen(L, table));
    nq::LuaState::chargeBudget(L, (static_cast<std::uint64_t>(length) + 1) * kElementCost);
    for (int i = 1; i <= length; ++i) {
        lua_rawgeti(L, table, i);
        if (lua_istable(L, -1)) {
            flatten(L, lua_gettop(L), entry, count, depth + 1);
            lua_pop(L, 1);
        } else if (lua_isstring(L, -1)) {
            lua_tostring(L, -1);  // a number becomes its text in this stack slot
            lua_rawseti(L, entry, ++*count);
        } else {
            lua_pop(L, 1);
        }
    }
}

// Turns the global p of the environment at index 2 into a list of entries {key, kind, values...},
// every element a Lua string, in the order of lua_next; nil if p is not a table. Everything that
// can fail in Lua happens here, under protection; the entries are then read without allocating.
int collectEntries(lua_State* L) {
    lua_getfield(L, 2, "p");
    if (!lua_istable(L, 3)) {
        lua_pushnil(L);
        return 1;
    }
    lua_newtable(L);
    int entries = 0;
    lua_pushnil(L);
    while (lua_next(L, 3) != 0) {
        nq::LuaState::chargeBudget(L, kElementCost);
        lua_createtable(L, 4, 0);
        int count = 0;
        // The key's text is made from a copy: converting the key itself would break lua_next.
        lua_pushvalue(L, 5);
        if (!lua_isstring(L, -1)) {
            lua_pop(L, 1);
            lua_pushliteral(L, "");
        }
        lua_tostring(L, -1);
        lua_rawseti(L, 7, ++count);
        if (lua_isnumber(L, 6)) {
            lua_pushliteral(L, "float");
            lua_rawseti(L, 7, ++count);
            lua_pushvalue(L, 6);
            lua_tostring(L, -1);
            lua_rawseti(L, 7, ++count);
        } else if (lua_isboolean(L, 6)) {
            lua_pushliteral(L, "float");
            lua_rawseti(L, 7, ++count);
            lua_pushstring(L, lua_toboolean(L, 6) ? "1.0" : "0.0");
            lua_rawseti(L, 7, ++count);
        } else if (lua_isstring(L, 6)) {
            lua_pushliteral(L, "string");
            lua_rawseti(L, 7, ++count);
            lua_pushvalue(L, 6);
            lua_rawseti(L, 7, ++count);
        } else if (lua_istable(L, 6)) {
            flatten(L, 6, 7, &count, 0);
        }
        lua_rawseti(L, 4, ++entries);
        lua_pop(L, 1);
    }
    return 1;
}

class StackRestore {
public:
    explicit StackRestore(lua_State* L) : L_(L), top_(lua_gettop(L)) {}
    ~StackRestore() { lua_settop(L_, top_); }
    StackRestore(const StackRestore&) = delete;
    StackRestore& operator=(const StackRestore&) = delete;

private:
    lua_State* L_;
    int top_;
};

// Element i of the table at `table`, known to be a Lua string: reading it allocates nothing.
std::string stringAt(lua_State* L, int table, int i) {
    lua_rawgeti(L, table, i);
    std::size_t size = 0;
    const char* text = lua_tolstring(L, -1, &size);
    std::string result(text, size);
    lua_pop(L, 1);
    return result;
}

void dispatchEntries(lua_State* L, int entries, const FuncHandlers& handlers) {
    const int count = static_cast<int>(lua_objlen(L, entries));
    for (int i = 1; i <= count; ++i) {
        lua_rawgeti(L, entries, i);
        const int entry = lua_gettop(L);
        const int size = static_cast<int>(lua_objlen(L, entry));
        const std::string name = stringAt(L, entry, 1);
        Values values;
        values.reserve(static_cast<std::size_t>(size));
        for (int j = 2; j <= size; ++j) {
            values.push_back(stringAt(L, entry, j));
        }
        lua_pop(L, 1);
        if (values.empty()) {
            throw nq::ExtException("Invalid right side of expression for variable: '" + name + "'.");
        }
        for (const FuncHandlerPtr& handler : handlers) {
            if (handler->accepts(name, values)) {
                handler->process(name, values);
                break;
            }
        }
    }
}

const std::regex& guidPattern() {
    static const std::regex pattern(R"(babylonjs_GUID\s*=\s*\w+-\w+-\w+-\w+-\w+)", std::regex::ECMAScript);
    return pattern;
}

// The regex engine recurses once per repeated character, so it only ever sees a short window:
// from the word babylonjs_GUID to the end of the run of characters that a match could consist of
// (spaces, "=", then word characters and dashes). A window longer than this cannot be a GUID line
// of any real scene, and is left to Lua, which rejects it.
constexpr std::size_t kMaxGuidWindow = 1024;

std::size_t guidWindowEnd(std::string_view text, std::size_t from) {
    static const std::regex_traits<char> traits;
    static constexpr char kSpace[] = "s";
    static constexpr char kWord[] = "w";
    static const auto space = traits.lookup_classname(kSpace, kSpace + 1);
    static const auto word = traits.lookup_classname(kWord, kWord + 1);
    auto skip = [&](auto accept) {
        while (from < text.size() && accept(text[from])) {
            ++from;
        }
    };
    auto isSpace = [&](char c) { return traits.isctype(c, space); };
    skip(isSpace);
    if (from < text.size() && text[from] == '=') {
        ++from;
        skip(isSpace);
        skip([&](char c) { return c == '-' || traits.isctype(c, word); });
    }
    return from;
}

}  // namespace

std::string removeGuidFragments(std::string_view text) {
    constexpr std::string_view kLead = "babylonjs_GUID";
    std::size_t at = text.find(kLead);
    if (at == std::string_view::npos) {
        return std::string(text);
    }
    std::string result;
    result.reserve(text.size());
    std::size_t copied = 0;
    while (at != std::string_view::npos) {
        const std::size_t end = guidWindowEnd(text, at + kLead.size());
        std::match_results<std::string_view::const_iterator> match;
        if (end - at <= kMaxGuidWindow &&
            std::regex_search(text.begin() + at, text.begin() + end, match, guidPattern(),
                              std::regex_constants::match_continuous)) {
            result.append(text.substr(copied, at - copied));
            copied = at + static_cast<std::size_t>(match.length(0));
            at = text.find(kLead, copied);
        } else {
            at = text.find(kLead, at + 1);
        }
    }
    result.append(text.substr(copied));
    return result;
}

void parseUserText(std::string_view text, const FuncHandlers& handlers) {
    if (text.empty()) {
        return;
    }
    const std::string chunk = "p={" + removeGuidFragments(text) + "};";
    nq::LuaState& lua = ParamsLuaWrapper::instance()();
    lua_State* L = lua.state();
    StackRestore restore(L);
    // Like loadstring, the chunk is named by its own text.
    if (auto error = lua.runChunk(chunk, chunk)) {
        throw nq::ExtException("Parser error:" + *error);
    }
    if (auto error = lua.call(collectEntries, nullptr, 1, 1)) {
        throw nq::ExtException("Parser error:" + *error);
    }
    if (!lua_istable(L, -1)) {
        throw nq::ExtException("Parser error.");
    }
    dispatchEntries(L, lua_gettop(L), handlers);
}

}  // namespace lu
