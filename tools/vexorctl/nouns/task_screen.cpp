#include "nouns/task_screen.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "common/terminal_text.h"
#include "output/progress_bar.h"
#include "output/terminal_width.h"
#include "output/wrapped_text.h"

namespace vexorctl {

namespace {

using vexortools::DisplayWidth;

// A terminal that does not tell its size.
constexpr TerminalSize kUsualSize{80, 24};

std::string Clocked(double seconds) {
    const auto whole = static_cast<unsigned long>(std::min(seconds, 359999.0));
    char text[32];
    std::snprintf(text, sizeof(text), "%lu:%02lu:%02lu", whole / 3600, whole / 60 % 60, whole % 60);
    return text;
}

std::string RateText(double percent_per_second) {
    char text[32];
    // What would show as "0.0%/s" is told by the hour.
    if (percent_per_second < 0.1) {
        std::snprintf(text, sizeof(text), "%.1f%%/h", percent_per_second * 3600);
    } else {
        std::snprintf(text, sizeof(text), "%.1f%%/s", percent_per_second);
    }
    return text;
}

std::string NameOr(std::span<const hxcodes::Named> names, std::uint64_t code) {
    const std::string_view name = hxcodes::NameOf(names, code);
    return name.empty() ? std::to_string(code) : std::string(name);
}

}  // namespace

TaskScreen::TaskScreen(const ControllerCodes& codes)
    : codes_(codes), drawn_on_terminal_(isatty(STDERR_FILENO) == 1) {}

std::string TaskScreen::LineOf(const Task& task, std::size_t width) {
    const std::string activity = NameOr(codes_.table().activities, task.activity);
    const std::string label = vexortools::Printable(task.address.Text() + " " + activity);
    const std::string percent = task.percent ? " " + std::to_string(*task.percent) + "%" : " ?%";
    std::string rate;
    std::string left;
    const bool runs =
        task.state && NameOr(codes_.table().activity_states, *task.state) == "running";
    if (!task.state) {
        left = " state unknown";
    } else if (!runs) {
        left = " " + vexortools::Printable(NameOr(codes_.table().activity_states, *task.state));
    } else if (task.percent) {
        const auto now = PercentRate::Clock::now();
        PercentRate& measured = rates_[label];
        measured.Take(*task.percent, now);
        // What was seen here is newer than the events, of which the last may be hours old.
        const auto seen = measured.PerSecond();
        const auto per_second = seen ? seen : task.pace.percent_per_second;
        // No optional here: g++ 12 takes its value for uninitialised.
        double seconds = -1;
        if (seen) {
            seconds = measured.SecondsLeft(now).value_or(-1);
        } else if (task.pace.seconds_left) {
            seconds = static_cast<double>(*task.pace.seconds_left);
        }
        if (per_second) rate = " " + RateText(*per_second) + ",";
        if (seconds >= 0) left = " " + Clocked(seconds) + " left";
    }
    // What there is room for: the time left before the bar, and the rate last.
    constexpr std::size_t kBrackets = 3;
    constexpr std::size_t kNarrowestBar = 6;
    constexpr std::size_t kWidestBar = 30;
    const auto room = [&](const std::string& more) {
        const std::size_t used = DisplayWidth(label) + percent.size() + more.size();
        return width > used ? width - used : 0;
    };
    if (room(left) == 0) left.clear();
    if (room(rate + left) < kBrackets + kNarrowestBar) rate.clear();
    std::string bar;
    const std::size_t rest = room(rate + left);
    if (task.percent && rest >= kBrackets + kNarrowestBar) {
        bar = " " + ProgressBar(*task.percent, std::min(rest - kBrackets, kWidestBar));
    }
    return WrappedLines(label + bar + percent + rate + left, width).front();
}

std::string TaskScreen::ToStart(std::size_t columns) const {
    // Where a terminal has become narrower, it has broken the lines that no longer fit.
    std::size_t rows = 0;
    for (const std::size_t each : shown_) {
        rows += std::max<std::size_t>(1, (each + columns - 1) / columns);
    }
    return rows > 1 ? "\x1b[" + std::to_string(rows - 1) + "A\r" : "\r";
}

void TaskScreen::Draw(const std::vector<Task>& tasks) {
    if (!drawn_on_terminal_) return;
    const TerminalSize size = SizeOfTerminal(STDERR_FILENO).value_or(kUsualSize);
    const std::size_t width = std::max<std::size_t>(size.columns, 2) - 1;
    const std::size_t most = std::max<std::size_t>(size.rows, 3) - 1;
    std::vector<std::string> lines;
    for (const Task& task : tasks) {
        if (tasks.size() > most && lines.size() + 1 == most) break;
        lines.push_back(LineOf(task, width));
    }
    if (lines.size() < tasks.size()) {
        const std::string more = "and " + std::to_string(tasks.size() - lines.size()) + " more";
        lines.push_back(WrappedLines(more, width).front());
    }
    std::string out = ToStart(size.columns);
    std::vector<std::size_t> widths;
    for (const std::string& line : lines) {
        if (!widths.empty()) out += "\n\r";
        out += "\x1b[K" + line;
        widths.push_back(DisplayWidth(line));
    }
    if (shown_.size() > 1 || shown_.size() > lines.size()) out += "\x1b[J";
    shown_ = std::move(widths);
    std::fwrite(out.data(), 1, out.size(), stderr);
}

void TaskScreen::Clear() {
    if (shown_.empty()) return;
    const TerminalSize size = SizeOfTerminal(STDERR_FILENO).value_or(kUsualSize);
    const std::string out = ToStart(size.columns) + (shown_.size() > 1 ? "\x1b[J" : "\x1b[K");
    std::fwrite(out.data(), 1, out.size(), stderr);
    shown_.clear();
}

}  // namespace vexorctl
