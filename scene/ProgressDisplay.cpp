#include "scene/ProgressDisplay.h"

#include <algorithm>

#include <fmt/format.h>

namespace scene {
namespace {

constexpr int barWidth = 30;

}  // namespace

void ProgressDisplay::start(const std::string& title, bool showBar) {
    if (open_) {
        end();
    }
    open_ = true;
    showBar_ = showBar;
    showPercent_ = false;
    percent_ = 0;
    title_ = title;
    if (mode_ == Mode::lines) {
        out_ << title_ << '\n' << std::flush;
    }
    draw();
}

void ProgressDisplay::update(int percent, bool showPercent, const char* title) {
    if (!open_) {
        return;
    }
    percent = std::clamp(percent, 0, 100);
    bool changed = percent != percent_ || showPercent != showPercent_ || (title && title_ != title);
    percent_ = percent;
    showPercent_ = showPercent;
    if (title) {
        title_ = title;
    }
    if (!changed) {
        return;
    }
    if (mode_ == Mode::lines) {
        if (showPercent_) {
            out_ << fmt::format("{} {}%\n", title_, percent_);
        } else {
            out_ << title_ << '\n';
        }
        out_ << std::flush;
    }
    draw();
}

void ProgressDisplay::end() {
    if (!open_) {
        return;
    }
    suspend();
    open_ = false;
}

void ProgressDisplay::suspend() {
    if (mode_ == Mode::bar && drawn_) {
        out_ << '\r' << std::string(line_.size(), ' ') << '\r' << std::flush;
        drawn_ = false;
    }
}

void ProgressDisplay::resume() {
    draw();
}

void ProgressDisplay::draw() {
    if (mode_ != Mode::bar || !open_) {
        return;
    }
    std::string line = title_;
    if (showBar_) {
        int filled = percent_ * barWidth / 100;
        line += fmt::format(" [{}{}]", std::string(static_cast<std::size_t>(filled), '#'),
                            std::string(static_cast<std::size_t>(barWidth - filled), '.'));
    }
    if (showPercent_) {
        line += fmt::format(" {:3}%", percent_);
    }
    // Pad with blanks over whatever longer text the line showed before.
    std::string padded = line;
    if (padded.size() < line_.size()) {
        padded.append(line_.size() - padded.size(), ' ');
    }
    out_ << '\r' << padded << std::flush;
    line_ = line;
    drawn_ = true;
}

}  // namespace scene
