#include "service/hxs_tasks.h"

#include <algorithm>
#include <cmath>

#include "codes/activity.h"
#include "codes/named.h"
#include "conditions/hxc_things.h"

namespace hxservice {

namespace {

namespace hxc = hxconditions;

// The rate is that of so many percents, so that it follows a change of the controller's load.
constexpr std::size_t kMostSteps = 10;

constexpr double kSecondsPerHour = 3600;

// For so many looks an activity is remembered that cannot be seen.
constexpr std::int64_t kMostLooksUnseen = 100;

// Whether everything was read that tells the activities of an adapter.
bool AreRead(const hxc::Adapter& adapter) {
    return adapter.virtual_disks_query.IsRead() && adapter.disks_query.IsRead() &&
           adapter.groups_query.IsRead();
}

}  // namespace

void TaskHistory::TakeOne(const hxc::Object& object, const std::optional<hxc::Activity>& activity,
                          const hxc::Now& now) {
    if (!activity || activity->kind == hxcodes::NumberOf(hxcodes::ActivityKind::kNone)) return;
    Seen& seen = seen_[object.identity];
    const bool is_another =
        seen.look == 0 || seen.kind != activity->kind ||
        (!seen.steps.empty() && activity->percent.value_or(100) < seen.steps.back().percent);
    if (is_another) seen = {.first_seen = now.real};
    // What passes while it is paused says nothing about its rate.
    if (seen.state != activity->state) seen.steps.clear();
    seen.adapter = object.adapter_identity;
    seen.kind = activity->kind;
    seen.state = activity->state;
    seen.look = looks_;
    const bool runs = activity->state == hxcodes::NumberOf(hxcodes::ActivityState::kRunning);
    if (runs && activity->percent &&
        (seen.steps.empty() || seen.steps.back().percent != *activity->percent)) {
        seen.steps.push_back({now.boot, *activity->percent});
        if (seen.steps.size() > kMostSteps) seen.steps.pop_front();
    }
    RunningTask& task = running_.emplace_back();
    task.object = object;
    task.activity = *activity;
    task.first_seen = seen.first_seen;
    task.seconds_left = activity->seconds_left;
    if (seen.steps.size() < 2) return;
    const Step& from = seen.steps.front();
    const Step& to = seen.steps.back();
    if (to.boot <= from.boot) return;
    const double rate =
        static_cast<double>(to.percent - from.percent) / static_cast<double>(to.boot - from.boot);
    task.percent_per_hour = rate * kSecondsPerHour;
    if (task.seconds_left || to.percent > 100) return;
    const double left = (100 - to.percent) / rate - static_cast<double>(now.boot - to.boot);
    task.seconds_left = static_cast<std::uint64_t>(std::max(0.0, std::round(left)));
}

void TaskHistory::Take(const hxc::Answers& answers, const hxc::Now& now) {
    if (boot_id_ != now.boot_id) seen_.clear();  // the clock of intervals began anew
    boot_id_ = now.boot_id;
    ++looks_;
    running_.clear();
    std::erase_if(seen_,
                  [&](const auto& each) { return each.second.look + kMostLooksUnseen < looks_; });
    if (answers.machine.result != hxc::Query::Result::kRead) return;
    const hxc::Things things(answers, {});
    for (const hxc::Adapter& adapter : answers.adapters) {
        for (const auto& each : adapter.virtual_disks) {
            TakeOne(things.Of(adapter, each), each.activity, now);
        }
        for (const auto& each : adapter.groups) {
            TakeOne(things.Of(adapter, each), each.activity, now);
        }
        for (const auto& each : adapter.disks) {
            TakeOne(things.Of(adapter, each), each.activity, now);
        }
        if (!AreRead(adapter)) continue;
        const std::string identity = things.Of(adapter).identity;
        std::erase_if(seen_, [&](const auto& each) {
            return each.second.adapter == identity && each.second.look != looks_;
        });
    }
}

}  // namespace hxservice
