// The tasks that are waited for, a line each on standard error, drawn over themselves.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "model/controller_codes.h"
#include "model/tasks.h"
#include "shell/percent_rate.h"

namespace vexorctl {

/// Draws on a terminal only. No line is as wide as the terminal, and there are fewer than it has
/// rows.
class TaskScreen {
public:
    explicit TaskScreen(const ControllerCodes& codes);
    ~TaskScreen() { Clear(); }
    TaskScreen(const TaskScreen&) = delete;
    TaskScreen& operator=(const TaskScreen&) = delete;

    /// Whether there is a terminal to draw on.
    bool IsDrawn() const { return drawn_on_terminal_; }
    /// Draws them in place of what was drawn before, at the width that the terminal has now.
    void Draw(const std::vector<Task>& tasks);
    /// Takes away what was drawn.
    void Clear();

private:
    std::string LineOf(const Task& task, std::size_t width);
    // Moves to where the first line begins.
    std::string ToStart(std::size_t columns) const;

    const ControllerCodes& codes_;
    bool drawn_on_terminal_;
    std::vector<std::size_t> shown_;            // the widths of the lines that stand there
    std::map<std::string, PercentRate> rates_;  // by address and activity
};

}  // namespace vexorctl
