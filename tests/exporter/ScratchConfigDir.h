#pragma once
// A plug-in configuration directory of the running test's own, made empty, installed as the
// host's, and removed with everything in it afterwards.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "host/HostServices.h"

class ScratchConfigDir {
public:
    ScratchConfigDir()
        : path_(std::filesystem::temp_directory_path() /
                ("nqfexp-" + std::to_string(getpid()) + "-" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name())) {
        std::filesystem::remove_all(path_);
        std::filesystem::create_directories(path_);
        host::setPluginConfigDir(path_.string());
    }
    ~ScratchConfigDir() { std::filesystem::remove_all(path_); }

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path file() const { return path_ / "nqfexp.cfg"; }
    void write(std::string_view content) const { std::ofstream(file(), std::ios::binary) << content; }
    std::string read() const {
        std::ifstream in(file(), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

private:
    std::filesystem::path path_;
};
