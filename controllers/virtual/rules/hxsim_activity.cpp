// Background activities: how they start, pause and resume, and their speed.
#include "rules/hxsim_activity.h"

#include <algorithm>

#include "model/hxsim_activity_row.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

constexpr std::uint64_t kQuickSeconds = 5;  // duration of an activity without a rate

std::uint64_t SpeedOf(const Adapter& adapter, const Activity& activity) {
    const auto rate = RowOf(activity.kind).rate;
    if (!rate) return activity.total / kQuickSeconds;
    const HX_U8 percent = adapter.config.*RowOf(*rate).setting;
    return kFullSpeed * std::max<HX_U8>(percent, 1) / 100;
}

// Stores the progress made so far; later progress counts from `now`.
void Mark(Activity& activity, Time now) {
    activity.done = Done(activity, now);
    activity.since = now;
}

void Stop(Adapter& adapter, Time now, Activity& activity, ActivityState state, Step step) {
    Mark(activity, now);
    activity.state = state;
    Announce(adapter, now, activity, step);
}

void Resume(Adapter& adapter, Time now, Activity& activity, Step step) {
    activity.since = now;
    activity.state = ActivityState::kRunning;
    Announce(adapter, now, activity, step);
}

}  // namespace

void Announce(Adapter& adapter, Time now, const Activity& activity, Step step, HX_U32 param) {
    const auto event = EventOf(activity.kind, step);
    if (!event) return;
    if (activity.of != Owner::kDiskGroup) {
        Queue(adapter, now, *event, activity.owner, {param});
        return;
    }
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group == activity.owner) Queue(adapter, now, *event, each.id, {param});
    }
}

Activity& Start(Adapter& adapter, Time now, Activity activity) {
    activity.id = FreeId(adapter.activities);
    activity.state = ActivityState::kRunning;
    activity.total = std::max<Sectors>(activity.total, 1);
    if (!RowOf(activity.kind).rate) {
        activity.total = std::max(activity.total - activity.total % kQuickSeconds, kQuickSeconds);
    }
    activity.done = 0;
    activity.since = now;
    activity.announced = 0;
    activity.found = 0;
    activity.speed = SpeedOf(adapter, activity);
    Announce(adapter, now, activity, Step::kStart);
    return Insert(adapter.activities, activity);
}

Activity Remove(Adapter& adapter, HX_U16 id) {
    Activity* const row = Find(adapter.activities, id);
    const Activity activity = *row;
    adapter.activities.erase(adapter.activities.begin() + (row - adapter.activities.data()));
    return activity;
}

Status Pause(Adapter& adapter, Time now, Activity& activity) {
    if (activity.state == ActivityState::kPaused) return Status::kNoChange;
    Stop(adapter, now, activity, ActivityState::kPaused, Step::kPause);
    return Status::kSuccess;
}

void Resume(Adapter& adapter, Time now, Activity& activity) {
    Resume(adapter, now, activity, Step::kResume);
}

void AutoPause(Adapter& adapter, Time now, Activity& activity) {
    Stop(adapter, now, activity, ActivityState::kAutoPaused, Step::kAutoPaused);
}

void AutoResume(Adapter& adapter, Time now, Activity& activity) {
    Resume(adapter, now, activity, Step::kAutoResume);
}

void Reschedule(Adapter& adapter, Time now) {
    for (Activity& activity : adapter.activities) {
        const std::uint64_t speed = SpeedOf(adapter, activity);
        if (speed == activity.speed) continue;
        if (activity.state == ActivityState::kRunning) Mark(activity, now);
        activity.speed = speed;
    }
}

}  // namespace hxsim
