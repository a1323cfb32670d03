#include "usertext/ParamsLuaWrapper.h"

#include <filesystem>
#include <system_error>

#include "core/ExtException.h"

namespace lu {
namespace {

std::string& configuredDir() {
    static std::string dir;
    return dir;
}

// Without a host's word: the folder of the running program when aux_func.lua is there (a build
// tree), else the installed copy beside it.
std::string defaultDir() {
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) {
        return ".";
    }
    const std::filesystem::path dir = program.parent_path();
    if (std::filesystem::exists(dir / "aux_func.lua", error)) {
        return dir.string();
    }
    return (dir.parent_path() / "share" / "nqfexp").string();
}

}  // namespace

void setPluginConfigDir(std::string dir) {
    configuredDir() = std::move(dir);
}

std::string pluginConfigDir() {
    return configuredDir().empty() ? defaultDir() : configuredDir();
}

ParamsLuaWrapper& ParamsLuaWrapper::instance() {
    static ParamsLuaWrapper wrapper;
    return wrapper;
}

nq::LuaState& ParamsLuaWrapper::operator()() {
    if (state_) {
        return *state_;
    }
    state_ = std::make_unique<nq::LuaState>("ParamsLuaWrapper::operator ()", limits_);
    std::string path = pluginConfigDir() + "/aux_func.lua";
    if (auto reason = state_->loadFile(path)) {
        throw nq::ExtException("Can't load file: " + path + ". Reason: " + *reason);
    }
    return *state_;
}

}  // namespace lu
