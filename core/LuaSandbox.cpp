// The library set of nq::LuaState: what is safe for text that anyone can put into a scene.
//
// Kept: the base functions that only compute, and the string, table and math libraries.
// Left out, with the reason:
//   - io, os, package, debug, require, module: reach the file system, the process or the
//     interpreter's internals;
//   - load, loadstring, loadfile, dofile, string.dump: make or inspect code at run time;
//   - getfenv, setfenv, rawset, _G: reach or change the shared globals behind each text;
//   - newproxy, collectgarbage, gcinfo: finalizers and collector control run outside any budget;
//   - pcall, xpcall, coroutine: would catch the budget's own error and go on;
//   - string.find, match, gmatch, gsub, table.sort: their running time in C is not bounded by
//     the length of their input (backtracking patterns, adversarial orderings), and the
//     instruction count does not see it.
// The library tables are reached through read-only stand-ins, and the string metatable is hidden,
// so that no text can change what the next text sees.

#include <cstdint>
#include <exception>
#include <string_view>

#include "core/Log.h"
#include "core/LuaControl.h"

namespace nq {
namespace {

// string.rep with the cost known in advance: a result beyond the cap fails at once instead of
// after filling memory, and an empty result costs nothing however large the count.
int boundedRep(lua_State* L) {
    std::size_t size = 0;
    const char* text = luaL_checklstring(L, 1, &size);
    lua_Integer count = luaL_checkinteger(L, 2);
    if (count <= 0 || size == 0) {
        lua_pushliteral(L, "");
        return 1;
    }
    LuaState::Control& c = luaControl(L);
    if (static_cast<std::uint64_t>(count) > c.limits.largestBlock / size) {
        c.capReached = true;
        return luaL_error(L, "not enough memory");
    }
    luaL_Buffer buffer;
    luaL_buffinit(L, &buffer);
    for (lua_Integer i = 0; i < count; ++i) {
        luaL_addlstring(&buffer, text, size);
    }
    luaL_pushresult(&buffer);
    return 1;
}

void logLine(lua_State* L, const char* text, std::size_t size) noexcept {
    try {
        nq_log(*luaControl(L).name, 8, std::string_view(text, size));
    } catch (const std::exception&) {
        // A line that cannot be logged is dropped; the text goes on.
    }
}

// print goes to the log under the state's name. Values that are not text are shown by their
// type, so that no __tostring of the text runs here.
int loggedPrint(lua_State* L) {
    int count = lua_gettop(L);
    luaL_Buffer buffer;
    luaL_buffinit(L, &buffer);
    for (int i = 1; i <= count; ++i) {
        if (i > 1) {
            luaL_addchar(&buffer, '\t');
        }
        if (lua_isstring(L, i)) {
            lua_pushvalue(L, i);
            luaL_addvalue(&buffer);
        } else {
            luaL_addstring(&buffer, luaL_typename(L, i));
        }
    }
    luaL_pushresult(&buffer);
    std::size_t size = 0;
    const char* text = lua_tolstring(L, -1, &size);
    logLine(L, text, size);
    return 0;
}

int refuseChange(lua_State* L) {
    return luaL_error(L, "attempt to change a read-only library table");
}

void removeFields(lua_State* L, int table, std::initializer_list<const char*> names) {
    if (table < 0 && table > LUA_REGISTRYINDEX) {
        table = lua_gettop(L) + table + 1;
    }
    for (const char* name : names) {
        lua_pushnil(L);
        lua_setfield(L, table, name);
    }
}

// Replaces the global library table `name` by an empty table whose reads go to the real one and
// whose writes fail.
void makeReadOnly(lua_State* L, const char* name) {
    lua_getglobal(L, name);
    lua_newtable(L);
    lua_newtable(L);
    lua_pushvalue(L, -3);
    lua_setfield(L, -2, "__index");
    lua_pushcfunction(L, refuseChange);
    lua_setfield(L, -2, "__newindex");
    lua_pushboolean(L, 0);
    lua_setfield(L, -2, "__metatable");
    lua_setmetatable(L, -2);
    lua_setglobal(L, name);
    lua_pop(L, 1);
}

}  // namespace

int openSandboxLibraries(lua_State* L) {
    const luaL_Reg libraries[] = {
        {"", luaopen_base},
        {LUA_STRLIBNAME, luaopen_string},
        {LUA_TABLIBNAME, luaopen_table},
        {LUA_MATHLIBNAME, luaopen_math},
    };
    for (const luaL_Reg& library : libraries) {
        lua_pushcfunction(L, library.func);
        lua_pushstring(L, library.name);
        lua_call(L, 1, 0);
    }

    removeFields(L, LUA_GLOBALSINDEX,
                 {"dofile", "loadfile", "load", "loadstring", "getfenv", "setfenv", "rawset", "newproxy",
                  "collectgarbage", "gcinfo", "pcall", "xpcall", "coroutine", "require", "module", "_G"});
    lua_pushcfunction(L, loggedPrint);
    lua_setglobal(L, "print");

    lua_getglobal(L, LUA_STRLIBNAME);
    removeFields(L, -1, {"dump", "find", "match", "gmatch", "gsub", "gfind"});
    lua_pushcfunction(L, boundedRep);
    lua_setfield(L, -2, "rep");
    lua_pop(L, 1);

    lua_getglobal(L, LUA_TABLIBNAME);
    removeFields(L, -1, {"sort", "foreach", "foreachi", "setn"});
    lua_pop(L, 1);

    // ("").rep keeps working through the metatable, but getmetatable("") gives false.
    lua_pushliteral(L, "");
    lua_getmetatable(L, -1);
    lua_pushboolean(L, 0);
    lua_setfield(L, -2, "__metatable");
    lua_pop(L, 2);

    for (const char* name : {LUA_STRLIBNAME, LUA_TABLIBNAME, LUA_MATHLIBNAME}) {
        makeReadOnly(L, name);
    }
    return 0;
}

}  // namespace nq
