#pragma once
// The progress display of the headless host. On a terminal it draws one line that it rewrites
// in place: the title, a bar and the percentage. In verbose mode it prints a plain line when the
// display opens and whenever the percentage or the title changes. Otherwise it prints nothing.

#include <ostream>
#include <string>

namespace scene {

class ProgressDisplay {
public:
    enum class Mode { silent, bar, lines };

    ProgressDisplay(std::ostream& out, Mode mode) : out_(out), mode_(mode) {}

    void start(const std::string& title, bool showBar);
    void update(int percent, bool showPercent, const char* title);
    void end();
    bool isOpen() const { return open_; }

    // Takes the drawn bar off the terminal line so that other text can be printed, and puts it
    // back afterwards.
    void suspend();
    void resume();

private:
    void draw();

    std::ostream& out_;
    Mode mode_;
    bool open_ = false;
    bool showBar_ = false;
    bool showPercent_ = false;
    bool drawn_ = false;
    int percent_ = 0;
    std::string title_;
    std::string line_;  // what the terminal line shows now
};

}  // namespace scene
