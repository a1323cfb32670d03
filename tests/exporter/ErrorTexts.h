#pragma once
// The collected export messages and the failures thrown, as the tests compare them.

#include <functional>
#include <string>
#include <vector>

#include "core/ExtException.h"
#include "exporter/ReportError.h"

namespace exporter::test {

// Each collected message up to its source part ("File: ..."), which names a line of the exporter.
inline std::vector<std::string> errorTexts() {
    std::vector<std::string> out;
    for (const std::string& e : exporter::errorList()) {
        out.push_back(e.substr(0, e.find("File:")));
    }
    return out;
}

// Each collected message without the line number after its source file.
inline std::vector<std::string> errorsWithoutLine() {
    std::vector<std::string> out;
    for (const std::string& e : exporter::errorList()) {
        out.push_back(e.substr(0, e.rfind(':')));
    }
    return out;
}

// The message of the failure that f throws, or "no failure".
inline std::string failureOf(const std::function<void()>& f) {
    try {
        f();
    } catch (const nq::ExtException& e) {
        return e.message();
    }
    return "no failure";
}

}  // namespace exporter::test
