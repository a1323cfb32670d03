#pragma once
// Wall and CPU time of the stages of one run of the headless host. A stage runs from its begin
// to the next begin or to end; the report has one line per stage, in order, and a total.

#include <string>
#include <vector>

namespace scene {

class StageTimes {
public:
    // Closes the running stage, if any, and opens the stage called name.
    void begin(const std::string& name);
    // Closes the running stage, if any.
    void end();
    // The name of the running stage; empty when none runs.
    const std::string& running() const { return running_; }
    // "time of NAME: W s wall, C s CPU" for each closed stage, then the same for all of them.
    std::string report() const;

private:
    struct Stage {
        std::string name;
        double wall = 0;
        double cpu = 0;
    };
    std::vector<Stage> stages_;
    std::string running_;
    double wallStart_ = 0;
    double cpuStart_ = 0;
};

}  // namespace scene
