#include "exporter/ReportError.h"

#include <cstdarg>
#include <cstdio>

#include "core/Log.h"

namespace exporter {
namespace {

std::vector<std::string>& errors() {
    static std::vector<std::string> list;
    return list;
}

}  // namespace

void reportError(const char* format, ...) {
    char buffer[kMaxReportLength + 1] = {};
    va_list args;
    va_start(args, format);
    std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    reportText(buffer);
}

void reportText(const std::string& text) {
    std::string message = text.substr(0, kMaxReportLength);
    nq::nq_log(kLogSource, kLogLevel, message);
    errors().push_back(std::move(message));
}

const std::vector<std::string>& errorList() {
    return errors();
}

std::vector<std::string> takeErrors() {
    std::vector<std::string> taken;
    taken.swap(errors());
    return taken;
}

void clearErrors() {
    errors().clear();
}

}  // namespace exporter
