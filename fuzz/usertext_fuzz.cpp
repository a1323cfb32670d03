// libFuzzer target for the user-text parser with the handlers of a node's text: any input either
// parses or ends in nq::ExtException; a crash, a sanitizer report, a hang or a Lua stack left
// unbalanced is a fault. Built and run by scripts/fuzz.sh.
//
// fuzz-sources: core/*.cpp model/*.cpp usertext/*.cpp
// fuzz-packages: lua5.1 fmt
// fuzz-seeds: fuzz/corpus/usertext

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <lua.hpp>

#include "core/ExtException.h"
#include "core/Log.h"
#include "model/PropertyList.h"
#include "usertext/AnimatedPropertiesHandler.h"
#include "usertext/ArrayHandler.h"
#include "usertext/ParamsLuaWrapper.h"
#include "usertext/ParseUserText.h"
#include "usertext/PropertiesHandler.h"
#include "usertext/WriteUserText.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    lu::setPluginConfigDir(NQ_SOURCE_DIR "/usertext");
    nq::setLogToStderr(false);  // print() of the inputs
    // A smaller budget than a host's, so that runaway inputs cost less of the run.
    nq::LuaLimits limits;
    limits.instructionBudget = 200'000;
    lu::ParamsLuaWrapper::instance().setLimits(limits);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    model::PropertyList properties;
    lu::FloatArrays arrays;
    const lu::FuncHandlers handlers{lu::FuncHandlerPtr(new lu::PropertiesHandler(properties)),
                                    lu::FuncHandlerPtr(new lu::AnimatedPropertiesHandler(properties)),
                                    lu::FuncHandlerPtr(new lu::ArrayHandler(arrays))};
    lua_State* L = lu::ParamsLuaWrapper::instance()().state();
    const int top = lua_gettop(L);
    try {
        lu::parseUserText(std::string_view(reinterpret_cast<const char*>(data), size), handlers);
    } catch (const nq::ExtException&) {
    }
    if (lua_gettop(L) != top) {
        __builtin_trap();
    }
    // Whatever was made can be written back.
    std::string text;
    lu::writeUserText(properties, arrays, text);
    return 0;
}
