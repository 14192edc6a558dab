// Background activities: how far they are, and how callers and the controller steer them.
#include "rules/hxsim_activity.h"

#include <algorithm>

#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_migration.h"
#include "rules/hxsim_repair.h"

namespace hxsim {
namespace {

constexpr std::uint64_t kQuickSeconds = 5;  // that a quick initialisation takes, whatever the size

template <class Rows>
auto FindActivity(Rows& rows, Owner of, HX_U16 owner, bool migration) -> decltype(rows.data()) {
    const auto row = std::ranges::find_if(rows, [&](const Activity& each) {
        return each.of == of && each.owner == owner &&
               (each.kind == HXSIM_ACTIVITY_MIGRATION) == migration;
    });
    return row != rows.end() ? &*row : nullptr;
}

template <class Rows>
auto FindAny(Rows& rows, Owner of, HX_U16 owner) -> decltype(rows.data()) {
    const auto first = FindActivity(rows, of, owner, false);
    return first != nullptr ? first : FindActivity(rows, of, owner, true);
}

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

// What is left behind by a rebuild that cannot go on: blocks that another one begins anew.
void ForgetRebuild(Adapter& adapter, HX_U16 virtual_disk) {
    for (Block& block : adapter.blocks) {
        if (block.virtual_disk == virtual_disk && block.state == HXSIM_STATE_REBUILDING) {
            block.state = HXSIM_STATE_DEGRADED;
        }
    }
}

Activity Remove(Adapter& adapter, HX_U16 id) {
    Activity* const row = Find(adapter.activities, id);
    const Activity activity = *row;
    adapter.activities.erase(adapter.activities.begin() + (row - adapter.activities.data()));
    return activity;
}

}  // namespace

Activity* ActivityOf(Adapter& adapter, Owner of, HX_U16 owner) {
    return FindAny(adapter.activities, of, owner);
}

const Activity* ActivityOf(const Adapter& adapter, Owner of, HX_U16 owner) {
    return FindAny(adapter.activities, of, owner);
}

Activity* MigrationOf(Adapter& adapter, Owner of, HX_U16 owner) {
    return FindActivity(adapter.activities, of, owner, true);
}

const Activity* MigrationOf(const Adapter& adapter, Owner of, HX_U16 owner) {
    return FindActivity(adapter.activities, of, owner, true);
}

bool IsBusy(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    if (ActivityOf(adapter, Owner::kVirtualDisk, virtual_disk.id) != nullptr) return true;
    return virtual_disk.group != kNoId &&
           ActivityOf(adapter, Owner::kDiskGroup, virtual_disk.group) != nullptr;
}

bool IsBusy(const Adapter& adapter, const DiskGroup& group) {
    if (ActivityOf(adapter, Owner::kDiskGroup, group.id) != nullptr) return true;
    return std::ranges::any_of(adapter.virtual_disks, [&](const VirtualDisk& each) {
        return each.group == group.id &&
               ActivityOf(adapter, Owner::kVirtualDisk, each.id) != nullptr;
    });
}

Sectors Done(const Activity& activity, Time now) {
    if (activity.state != HXSIM_ACTIVITY_RUNNING || now <= activity.since) return activity.done;
    const Sectors left = activity.total - std::min(activity.done, activity.total);
    const auto milliseconds = static_cast<std::uint64_t>(now - activity.since);
    const std::uint64_t speed = std::max<std::uint64_t>(activity.speed, 1);
    // Whole seconds first, so that no product leaves 64 bits.
    if (milliseconds / 1000 > left / speed) return activity.total;
    return activity.done +
           std::min(left, milliseconds / 1000 * speed + milliseconds % 1000 * speed / 1000);
}

HX_U16 Percentage(const Activity& activity, Time now) {
    if (activity.total == 0) return 0;
    return static_cast<HX_U16>(Done(activity, now) * 100 / activity.total);
}

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

HX_U8 Control(Adapter& adapter, Time now, Owner of, HX_U16 owner, HX_U8 action) {
    if (action != HXSIM_CONTROL_PAUSE && action != HXSIM_CONTROL_RESUME &&
        action != HXSIM_CONTROL_ABORT) {
        return HXSIM_BAD_ACTION;
    }
    Activity* const activity = ActivityOf(adapter, of, owner);
    if (activity == nullptr) return HXSIM_NO_ACTIVITY;
    const HX_U8 state = activity->state;
    switch (action) {
        case HXSIM_CONTROL_PAUSE:
            return Pause(adapter, now, *activity);
        case HXSIM_CONTROL_RESUME:
            if (state == HXSIM_ACTIVITY_RUNNING) return HXSIM_NO_CHANGE;
            // What has made the controller pause it is still there.
            if (state == HXSIM_ACTIVITY_AUTO_PAUSED) return HXSIM_WRONG_STATE;
            Resume(adapter, now, *activity, Step::kResume);
            return HX_SUCCESS;
        default:
            Abort(adapter, now, activity->id);
            return HX_SUCCESS;
    }
}

HX_U8 Pause(Adapter& adapter, Time now, Activity& activity) {
    if (activity.state == HXSIM_ACTIVITY_PAUSED) return HXSIM_NO_CHANGE;
    Stop(adapter, now, activity, HXSIM_ACTIVITY_PAUSED, Step::kPause);
    return HX_SUCCESS;
}

void AutoPause(Adapter& adapter, Time now, Activity& activity) {
    Stop(adapter, now, activity, HXSIM_ACTIVITY_AUTO_PAUSED, Step::kAutoPaused);
}

void AutoResume(Adapter& adapter, Time now, Activity& activity) {
    Resume(adapter, now, activity, Step::kAutoResume);
}

void Abort(Adapter& adapter, Time now, HX_U16 activity_id) {
    if (Find(adapter.activities, activity_id) == nullptr) return;
    const Activity activity = Remove(adapter, activity_id);
    if (activity.kind == HXSIM_ACTIVITY_COPYBACK) DropCopyback(adapter, activity, true);
    if (activity.kind == HXSIM_ACTIVITY_MIGRATION) AbandonMigration(adapter, activity);
    Announce(adapter, now, activity, Step::kAbort);
}

void Fail(Adapter& adapter, Time now, HX_U16 activity_id) {
    if (Find(adapter.activities, activity_id) == nullptr) return;
    const Activity activity = Remove(adapter, activity_id);
    if (activity.kind == HXSIM_ACTIVITY_REBUILD) ForgetRebuild(adapter, activity.owner);
    if (activity.kind == HXSIM_ACTIVITY_COPYBACK) DropCopyback(adapter, activity, false);
    if (activity.kind == HXSIM_ACTIVITY_MIGRATION) AbandonMigration(adapter, activity);
    Announce(adapter, now, activity, Step::kError);
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
