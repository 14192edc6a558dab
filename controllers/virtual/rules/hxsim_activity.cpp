// Background activities: how they start, pause and go on, and at what speed.
#include "rules/hxsim_activity.h"

#include <algorithm>

#include "codes/hxraid_codes.h"
#include "model/hxsim_activity_row.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

constexpr std::uint64_t kQuickSeconds = 5;  // that a quick initialisation takes, whatever the size

HX_U8 RateOf(const Adapter_Config_V2& config, HX_U8 kind) {
    switch (kind) {
        case HXSIM_ACTIVITY_CHECK:
        case HXSIM_ACTIVITY_FIX:
            return config.SyncRate;
        case HXSIM_ACTIVITY_INIT_BACK:
        case HXSIM_ACTIVITY_INIT_FORE:
            return config.InitRate;
        case HXSIM_ACTIVITY_REBUILD:
            return config.RebuildRate;
        case HXSIM_ACTIVITY_MIGRATION:
            return config.MigrationRate;
        case HXSIM_ACTIVITY_COPYBACK:
            return config.CopybackRate;
        case HXSIM_ACTIVITY_MEDIA_PATROL:
            return config.MediaPatrolRate;
        default:
            return config.BGARate;
    }
}

std::uint64_t SpeedOf(const Adapter& adapter, const Activity& activity) {
    if (activity.kind == HXSIM_ACTIVITY_INIT_QUICK) return activity.total / kQuickSeconds;
    return kFullSpeed * std::max<HX_U8>(RateOf(adapter.config, activity.kind), 1) / 100;
}

// From now on the activity is counted from here.
void Mark(Activity& activity, Time now) {
    activity.done = Done(activity, now);
    activity.since = now;
}

void Stop(Adapter& adapter, Time now, Activity& activity, HxsimActivityState state, Step step) {
    Mark(activity, now);
    activity.state = state;
    Announce(adapter, now, activity, step);
}

void Resume(Adapter& adapter, Time now, Activity& activity, Step step) {
    activity.since = now;
    activity.state = HXSIM_ACTIVITY_RUNNING;
    Announce(adapter, now, activity, step);
}

}  // namespace

void Announce(Adapter& adapter, Time now, const Activity& activity, Step step, HX_U32 param) {
    switch (activity.of) {
        case Owner::kVirtualDisk:
            Queue(adapter, now, VirtualDiskStep(activity.kind, step), activity.owner, {param});
            break;
        case Owner::kDiskGroup:
            for (const VirtualDisk& each : adapter.virtual_disks) {
                if (each.group != activity.owner) continue;
                Queue(adapter, now, VirtualDiskStep(activity.kind, step), each.id, {param});
            }
            break;
        case Owner::kDisk:
            if (activity.kind != HXSIM_ACTIVITY_MEDIA_PATROL) break;
            Queue(adapter, now, MediaPatrolStep(step), activity.owner, {param});
            break;
    }
}

Activity& Start(Adapter& adapter, Time now, Activity activity) {
    activity.id = FreeId(adapter.activities);
    activity.state = HXSIM_ACTIVITY_RUNNING;
    activity.total = std::max<Sectors>(activity.total, 1);
    if (activity.kind == HXSIM_ACTIVITY_INIT_QUICK) {
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

HX_U8 Pause(Adapter& adapter, Time now, Activity& activity) {
    if (activity.state == HXSIM_ACTIVITY_PAUSED) return HXSIM_NO_CHANGE;
    Stop(adapter, now, activity, HXSIM_ACTIVITY_PAUSED, Step::kPause);
    return HX_SUCCESS;
}

void Resume(Adapter& adapter, Time now, Activity& activity) {
    Resume(adapter, now, activity, Step::kResume);
}

void AutoPause(Adapter& adapter, Time now, Activity& activity) {
    Stop(adapter, now, activity, HXSIM_ACTIVITY_AUTO_PAUSED, Step::kAutoPaused);
}

void AutoResume(Adapter& adapter, Time now, Activity& activity) {
    Resume(adapter, now, activity, Step::kAutoResume);
}

void Reschedule(Adapter& adapter, Time now) {
    for (Activity& activity : adapter.activities) {
        const std::uint64_t speed = SpeedOf(adapter, activity);
        if (speed == activity.speed) continue;
        if (activity.state == HXSIM_ACTIVITY_RUNNING) Mark(activity, now);
        activity.speed = speed;
    }
}

}  // namespace hxsim
