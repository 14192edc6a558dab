#include "nouns/wait_for_tasks.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <map>

#include "codes/named.h"
#include "common/address.h"
#include "common/exit_code.h"
#include "model/controller_codes.h"
#include "model/task_pace.h"
#include "model/tasks.h"
#include "nouns/task_ends.h"
#include "nouns/task_screen.h"
#include "output/streams.h"
#include "shell/interrupt.h"
#include "shell/option_value.h"
#include "shell/present.h"

namespace vexorctl {

namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kLookMilliseconds = 200;
// The events are all read for the pace, and a new one may come every few minutes.
constexpr unsigned kLooksPerPace = 50;

// Whether somebody has paused it: it goes on when somebody resumes it. One that the controller has
// paused goes on by itself.
bool IsPaused(const ControllerCodes& codes, const Task& task) {
    return task.state && hxcodes::NameOf(codes.table().activity_states, *task.state) == "paused";
}

void ReportPaused(const Task& task) {
    const std::string where = task.address.Text();
    const std::string far = task.percent ? " at " + std::to_string(*task.percent) + " %" : "";
    ReportFailure(where, "paused" + far + "; to let it go on: vexorctl task resume " + where);
}

// Which disk group a task belongs to matters only to those who wait for the group; a virtual disk
// whose record cannot be read does not keep the others from waiting.
TaskDetail DetailFor(const std::vector<std::string>& addresses) {
    const bool is_group = std::ranges::any_of(addresses, [](const std::string& address) {
        return ParseSelector(address).address.kind == ObjectKind::kDiskGroup;
    });
    return is_group ? TaskDetail::kWithObject : TaskDetail::kActivity;
}

// Measures the paces anew where that is due; otherwise they are those of before.
void TakePaces(Controller& controller, bool is_due, std::vector<Task>& tasks,
               std::map<std::string, TaskPace>& paces) {
    const auto key = [](const Task& task) {
        return task.address.Text() + " " + std::to_string(task.activity);
    };
    if (is_due) {
        TellPace(controller, tasks);
        paces.clear();
        for (const Task& task : tasks) paces.emplace(key(task), task.pace);
        return;
    }
    for (Task& task : tasks) {
        const auto found = paces.find(key(task));
        if (found != paces.end()) task.pace = found->second;
    }
}

void Remember(const std::vector<Task>& seen, std::vector<Task>& before) {
    for (const Task& task : seen) {
        const bool is_known = std::ranges::any_of(before, [&](const Task& each) {
            return each.address == task.address && each.activity == task.activity;
        });
        if (!is_known) before.push_back(task);
    }
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
    TaskScreen screen(controller.codes());
    std::map<std::string, TaskPace> paces;
    std::vector<Task> before;  // each that was seen to run
    TaskEnds ends(controller);
    for (unsigned look = 0;; ++look) {
        const bool first = look == 0;
        std::vector<Task> tasks = LoadTasks(controller, detail);
        if (controller.exit() != Exit::kDone) {
            screen.Clear();
            ReportFaults(controller.faults());
            return controller.exit();
        }
        if (first && all) {
            for (const Task& task : tasks) addresses.push_back(task.address.Text());
        }
        const auto waited_for = [&](const Task& task) {
            return std::ranges::any_of(
                addresses, [&](const std::string& address) { return IsTaskOf(task, address); });
        };
        std::vector<Task> left;
        std::ranges::copy_if(tasks, std::back_inserter(left), waited_for);
        if (left.empty()) {
            screen.Clear();
            return ends.Tell(before);
        }
        Remember(left, before);
        const auto running = std::ranges::find_if(
            left, [&](const Task& task) { return !IsPaused(controller.codes(), task); });
        if (running == left.end()) {
            screen.Clear();
            for (const Task& task : left) ReportPaused(task);
            return Exit::kWaiting;
        }
        if (screen.IsDrawn()) TakePaces(controller, look % kLooksPerPace == 0, left, paces);
        screen.Draw(left);
        const std::string where = running->address.Text();
        const auto waited = std::chrono::duration_cast<Duration>(Clock::now() - start);
        if (!Interrupted() && timeout != kForever && waited >= timeout) {
            screen.Clear();
            ReportFailure(where, "the wait timed out; the task goes on");
            return Exit::kWaiting;
        }
        SleepMilliseconds(kLookMilliseconds);
        if (Interrupted()) {
            screen.Clear();
            ReportFailure(where, "interrupted; the task goes on");
            return Exit::kInterrupted;
        }
    }
}

}  // namespace vexorctl
