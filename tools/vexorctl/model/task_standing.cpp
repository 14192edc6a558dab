#include "model/task_standing.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "codes/activity.h"
#include "codes/named.h"
#include "codes/state.h"
#include "common/address.h"
#include "library_fields.h"
#include "model/controller_codes.h"
#include "model/disks.h"
#include "model/library_record.h"
#include "model/virtual_disks.h"

namespace vexorctl {

namespace {

using hxcodes::ActivityKind;
using hxcodes::ActivityState;

constexpr std::string_view kRunning = "running", kPaused = "paused", kQueued = "queued",
                           kHasFailed = "failed";

// What a disk that keeps an activity from going on is said to be.
constexpr std::string_view kLostStates[] = {"failed", "missing", "offline"};

struct StandingRow {
    ActivityState state;
    std::string_view standing;
};
constexpr StandingRow kStandings[] = {
    {ActivityState::kRunning, kRunning},
    {ActivityState::kPaused, kPaused},
    {ActivityState::kAutoPaused, kQueued},
    {ActivityState::kIdle, kQueued},  // it has not begun
};

std::string NameOfActivity(ActivityKind kind) {
    return std::string(hxcodes::NameOf(hxcodes::kActivityNames, hxcodes::NumberOf(kind)));
}

std::string ActivityWord(const Task& task, const hxcodes::CodeTable& codes) {
    return std::string(hxcodes::NameOf(codes.activities, task.activity));
}

std::string InWords(std::string name) {
    std::ranges::replace(name, '_', ' ');
    return name;
}

std::optional<std::uint64_t> CodeOfActivity(const hxcodes::CodeTable& codes,
                                            std::string_view name) {
    const auto* const found = hxcodes::FindName(codes.activities, name);
    if (found == nullptr) return std::nullopt;
    return found->code;
}

// Fills in what the object's record tells, and what to do before anything is started on it; false
// when it is listed no more.
bool CompleteFailed(Controller& controller, Task& task) {
    const unsigned adapter = task.address.adapter;
    const auto is_it = [&](const auto& item) { return item.id == task.address.id; };
    if (task.address.kind == ObjectKind::kDisk) {
        task.name = "";
        const auto disks = controller.ReadList(adapter, kDiskActivityList);
        return disks.presence != Presence::kThere || std::ranges::any_of(disks.items, is_it);
    }
    const auto list = controller.ReadList(adapter, kVirtualDiskList);
    const auto found = std::ranges::find_if(list.items, is_it);
    if (found == list.items.end()) return list.presence != Presence::kThere;
    task.name = found->record[fields::LD_Info::Name];
    const auto state = found->record[fields::LD_Info::Status];
    const std::string_view offline = hxcodes::NameOf(hxcodes::State::kOffline);
    if (state && hxcodes::NameOf(controller.codes().table().states, *state) == offline) {
        task.next_step = "vexorctl risk " + task.address.Text();
    }
    return true;
}

bool SharesDisks(const Task& one, const Task& other) {
    if (!one.pace.disks || !other.pace.disks) return false;
    return std::ranges::any_of(*one.pace.disks, [&](const Address& each) {
        return std::ranges::find(*other.pace.disks, each) != other.pace.disks->end();
    });
}

// What runs, or waits itself, on the same disks.
std::optional<std::string> WhatItWaitsFor(const Task& task, const std::vector<Task>& tasks,
                                          const hxcodes::CodeTable& codes) {
    for (const Task& each : tasks) {
        if (each.address == task.address || each.has_failed || !SharesDisks(task, each)) continue;
        if (StandingOf(each, codes) == kQueued) continue;
        const std::string activity = InWords(ActivityWord(each, codes));
        return "the " + (activity.empty() ? "activity" : activity) + " of " + each.address.Text() +
               " runs on the same disks";
    }
    return std::nullopt;
}

// Those of its disks that are lost.
std::vector<std::pair<std::string, std::string>> LostDisks(const Task& task,
                                                           const std::vector<Disk>& disks) {
    std::vector<std::pair<std::string, std::string>> lost;
    for (const Address& each : task.pace.disks.value_or(std::vector<Address>())) {
        const auto disk = std::ranges::find(disks, each, &Disk::address);
        if (disk == disks.end() || !disk->state) continue;
        const auto* const state = std::ranges::find(kLostStates, *disk->state);
        if (state != std::end(kLostStates)) lost.emplace_back(each.Text(), *state);
    }
    return lost;
}

void TellFailure(Task& task, const std::vector<Disk>& disks, const hxcodes::CodeTable& codes) {
    std::string cause;
    std::string replace;
    for (const auto& [address, state] : LostDisks(task, disks)) {
        cause += (cause.empty() ? "" : ", ") + address;
        cause += state == "failed" ? " failed" : " is " + state;
        replace += (replace.empty() ? "Replace " : ", ") + address;
    }
    if (!cause.empty()) task.cause = cause;
    if (task.next_step) return;
    if (task.address.kind == ObjectKind::kDisk && !replace.empty()) {
        task.next_step = replace;
        return;
    }
    std::string kind = ActivityWord(task, codes);
    std::ranges::replace(kind, '_', '-');
    // A migration or copyback has no verb that starts it again.
    const bool can_start = kind != NameOfActivity(ActivityKind::kMigration) &&
                           kind != NameOfActivity(ActivityKind::kCopyback);
    const std::string again = can_start
                                  ? "vexorctl task start " + task.address.Text() + " --kind " + kind
                                  : "vexorctl check";
    task.next_step = replace.empty() ? again : replace + ", then " + again;
}

}  // namespace

std::string_view StandingOf(const Task& task, const hxcodes::CodeTable& codes) {
    if (task.has_failed) return kHasFailed;
    if (!task.state) return {};
    const std::string_view name = hxcodes::NameOf(codes.activity_states, *task.state);
    for (const StandingRow& row : kStandings) {
        if (hxcodes::NameOf(row.state) == name) return row.standing;
    }
    return {};
}

std::vector<std::string_view> Standings() { return {kRunning, kPaused, kQueued, kHasFailed}; }

std::vector<Task> LoadFailedTasks(Controller& controller, std::span<const Period> periods,
                                  std::span<const Task> running) {
    const hxcodes::CodeTable& codes = controller.codes().table();
    std::map<std::pair<std::string, std::string_view>, const Period*> last;
    for (const Period& each : periods) {
        if (each.is_activity) last[{each.object, each.kind}] = &each;
    }
    std::vector<Task> failed;
    for (const Period& each : periods) {
        if (!each.is_activity || last[{each.object, each.kind}] != &each) continue;
        if (each.how != PeriodEnd::kFailed || each.is_past) continue;
        const auto code = CodeOfActivity(codes, each.kind);
        Task task;
        task.address = ParseSelector(each.object).address;
        const auto selected = controller.Selected();
        if (!code || std::ranges::find(selected, task.address.adapter) == selected.end()) continue;
        task.activity = *code;
        const bool runs_again = std::ranges::any_of(running, [&](const Task& other) {
            return other.activity == task.activity && IsTaskOf(other, each.object);
        });
        if (runs_again || !CompleteFailed(controller, task)) continue;
        task.has_failed = true;
        task.percent = each.percent;
        task.pace.start = each.start;
        if (task.address.kind == ObjectKind::kVirtualDisk) task.virtual_disks = {task.address.id};
        failed.push_back(std::move(task));
    }
    return failed;
}

void TellCauses(Controller& controller, std::vector<Task>& tasks) {
    const hxcodes::CodeTable& codes = controller.codes().table();
    const std::size_t faults = controller.faults().size();
    const Exit exit = controller.exit();
    std::optional<std::vector<Disk>> disks;
    for (Task& task : tasks) {
        const std::string_view standing = StandingOf(task, codes);
        if (standing == kRunning) {
            task.cause = task.next_step = "";
        } else if (standing == kPaused) {
            task.cause = "somebody has paused it";
            task.next_step = "vexorctl task resume " + task.address.Text();
        } else if (standing == kQueued) {
            task.cause = WhatItWaitsFor(task, tasks, codes);
            task.next_step = "Wait: it goes on by itself";
        } else if (standing == kHasFailed) {
            if (!disks) disks = LoadDisks(controller);
            TellFailure(task, *disks, codes);
        }
    }
    controller.TakeBack(faults, exit);
}

}  // namespace vexorctl
