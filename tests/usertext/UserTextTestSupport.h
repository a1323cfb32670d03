#pragma once
// Shared pieces of the user-text tests: a handler that records what it is given, and a fixture
// whose parser state loads the project's own aux_func.lua.

#include <gtest/gtest.h>

#include <lua.hpp>

#include <set>
#include <string>
#include <utility>

#include "core/ExtException.h"
#include "usertext/ParamsLuaWrapper.h"
#include "usertext/ParseUserText.h"

namespace lu::test {

using Entry = std::pair<std::string, Values>;

// Accepts the kinds it was given (every kind when given none) and records the entries.
class RecordingHandler : public FuncHandler {
public:
    explicit RecordingHandler(std::set<std::string> kinds = {}) : kinds_(std::move(kinds)) {}
    bool accepts(const std::string&, const Values& values) override {
        return kinds_.empty() || kinds_.count(values.front()) != 0;
    }
    void process(const std::string& name, const Values& values) override {
        entries.emplace_back(name, values);
    }

    std::vector<Entry> entries;

private:
    std::set<std::string> kinds_;
};

class UserTextTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        setPluginConfigDir(NQ_SOURCE_DIR "/usertext");
        ParamsLuaWrapper::instance().reset();
    }

    // The entries of a text that parses, in the order the handler saw them.
    static std::vector<Entry> parse(const std::string& text) {
        nq::Ptr<RecordingHandler> handler(new RecordingHandler);
        parseUserText(text, {handler});
        return handler->entries;
    }

    // The message of the failure that a text ends in, or "(no failure)".
    static std::string failure(const std::string& text, const FuncHandlers& handlers = {}) {
        try {
            parseUserText(text, handlers);
        } catch (const nq::ExtException& e) {
            return e.message();
        }
        return "(no failure)";
    }

    static int stackTop() { return lua_gettop(ParamsLuaWrapper::instance()().state()); }
};

}  // namespace lu::test
