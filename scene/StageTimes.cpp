#include "scene/StageTimes.h"

#include <time.h>

#include <fmt/format.h>

namespace scene {
namespace {

double seconds(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// The CPU time of the whole process, all threads and the kernel's work for it included.
double cpuSeconds() {
    return seconds(CLOCK_PROCESS_CPUTIME_ID);
}

double wallSeconds() {
    return seconds(CLOCK_MONOTONIC);
}

}  // namespace

void StageTimes::begin(const std::string& name) {
    end();
    running_ = name;
    wallStart_ = wallSeconds();
    cpuStart_ = cpuSeconds();
}

void StageTimes::end() {
    if (running_.empty()) {
        return;
    }
    stages_.push_back(Stage{running_, wallSeconds() - wallStart_, cpuSeconds() - cpuStart_});
    running_.clear();
}

std::string StageTimes::report() const {
    std::string text;
    Stage total{"all stages"};
    for (const Stage& stage : stages_) {
        text += fmt::format("time of {}: {:.3f} s wall, {:.3f} s CPU\n", stage.name, stage.wall, stage.cpu);
        total.wall += stage.wall;
        total.cpu += stage.cpu;
    }
    text += fmt::format("time of {}: {:.3f} s wall, {:.3f} s CPU\n", total.name, total.wall, total.cpu);
    return text;
}

}  // namespace scene
