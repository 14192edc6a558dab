#include "nouns/wait_for_tasks.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "common/address.h"
#include "model/controller_codes.h"
#include "model/fault.h"
#include "model/tasks.h"
#include "output/progress_bar.h"
#include "output/streams.h"
#include "shell/interrupt.h"
#include "shell/option_value.h"

namespace vexorctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kLookMilliseconds = 200;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::string Clocked(double seconds) {
    const auto whole = static_cast<unsigned long>(std::min(seconds, 359999.0));
    char text[32];
    std::snprintf(text, sizeof(text), "%lu:%02lu:%02lu", whole / 3600, whole / 60 % 60, whole % 60);
    return text;
}

// One line on standard error, drawn over itself; nothing at all in a pipe.
class Bar {
public:
    explicit Bar(const ControllerCodes& codes)
        : codes_(codes), drawn_on_terminal_(isatty(STDERR_FILENO) == 1) {}
    ~Bar() { Clear(); }
    Bar(const Bar&) = delete;
    Bar& operator=(const Bar&) = delete;

    void Draw(const Task& task) {
        if (!drawn_on_terminal_) return;
        const std::uint64_t percent = std::min<std::uint64_t>(task.percent.value_or(0), 100);
        if (!started_) {
            started_ = true;
            first_ = percent;
            start_ = Clock::now();
        }
        std::string activity(hxcodes::NameOf(codes_.table().activities, task.activity));
        if (activity.empty()) activity = std::to_string(task.activity);
        std::string line = BarText(task.address.Text() + " " + activity, percent);
        const double elapsed = SecondsSince(start_);
        if (percent > first_ && elapsed > 0) {
            const double rate = static_cast<double>(percent - first_) / elapsed;
            char text[64];
            std::snprintf(text, sizeof(text), " %.1f%%/s, %s left", rate,
                          Clocked(static_cast<double>(100 - percent) / rate).c_str());
            line += text;
        }
        std::fwrite(line.data(), 1, line.size(), stderr);
        shown_ = true;
    }

    void Clear() {
        if (shown_) std::fputs(kClearLine, stderr);
        shown_ = false;
    }

private:
    const ControllerCodes& codes_;
    bool drawn_on_terminal_;
    bool shown_ = false;
    bool started_ = false;
    std::uint64_t first_ = 0;  // the percent at which it started to look
    Clock::time_point start_;
};

// Which disk group a task belongs to matters only to those who wait for the group; a virtual disk
// whose record cannot be read does not keep the others from waiting.
TaskDetail DetailFor(const std::vector<std::string>& addresses) {
    const bool is_group = std::ranges::any_of(addresses, [](const std::string& address) {
        return ParseSelector(address).address.kind == ObjectKind::kDiskGroup;
    });
    return is_group ? TaskDetail::kWithObject : TaskDetail::kActivity;
}

}  // namespace

Duration TimeoutOf(const Invocation& invocation, std::string_view option) {
    const std::string text = invocation.Get(option, "");
    if (text.empty()) return kForever;
    return ReadOption(option, text, ParseDuration);
}

bool HasTask(Controller& controller, const std::string& address) {
    return std::ranges::any_of(LoadTasks(controller, DetailFor({address})),
                               [&](const Task& task) { return IsTaskOf(task, address); });
}

Exit WaitForTask(Invocation& invocation, const std::string& address, Duration timeout) {
    return WaitForTasks(invocation, {address}, timeout);
}

Exit WaitForTasks(Invocation& invocation, std::vector<std::string> addresses, Duration timeout) {
    WatchForInterrupts();
    Controller& controller = invocation.controller();
    const Clock::time_point start = Clock::now();
    const bool all = addresses.empty();
    const TaskDetail detail = DetailFor(addresses);
    Bar bar(controller.codes());
    for (bool first = true;; first = false) {
        const std::vector<Task> tasks = LoadTasks(controller, detail);
        if (controller.exit() != Exit::kDone) {
            bar.Clear();
            for (const Fault& fault : controller.faults()) {
                ReportFailure(fault.address, fault.message);
            }
            return controller.exit();
        }
        if (first && all) {
            for (const Task& task : tasks) addresses.push_back(task.address.Text());
        }
        const auto waited_for = [&](const Task& task) {
            return std::ranges::any_of(
                addresses, [&](const std::string& address) { return IsTaskOf(task, address); });
        };
        const auto running = std::ranges::find_if(tasks, waited_for);
        if (running == tasks.end()) return Exit::kDone;
        bar.Draw(*running);
        const std::string where = running->address.Text();
        const auto waited = std::chrono::duration_cast<Duration>(Clock::now() - start);
        if (!Interrupted() && timeout != kForever && waited >= timeout) {
            bar.Clear();
            ReportFailure(where, "the wait timed out; the task goes on");
            return Exit::kWaiting;
        }
        SleepMilliseconds(kLookMilliseconds);
        if (Interrupted()) {
            bar.Clear();
            ReportFailure(where, "interrupted; the task goes on");
            return Exit::kInterrupted;
        }
    }
}

}  // namespace vexorctl
