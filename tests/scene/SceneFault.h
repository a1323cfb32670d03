#pragma once
// The fault a scene document gives, with every part the tests compare.

#include <gtest/gtest.h>

#include <string>

#include "scene/SceneLoader.h"

namespace scenetest {

struct Fault {
    std::string path;
    std::string message;
    int line = 0;
    int column = 0;
    std::string what;
    std::string described;  // as described for a document named "ship.json"
};

// The fault that f throws; a test failure when it throws none.
template <class F>
Fault faultOf(F&& f) {
    try {
        f();
    } catch (const scene::DocumentError& e) {
        return {e.path(), e.message(), e.line(), e.column(), e.what(), e.describe("ship.json")};
    }
    ADD_FAILURE() << "no fault";
    return {};
}

// The fault of parsing the document json.
inline Fault faultIn(const std::string& json) {
    SCOPED_TRACE(json);
    return faultOf([&] { scene::parseScene(json); });
}

}  // namespace scenetest
