// The rows of background activities.
#include "model/hxsim_activity_row.h"

#include <algorithm>

namespace hxsim {
namespace {

template <class Rows>
auto FindActivity(Rows& rows, Owner of, HX_U16 owner, bool migration) -> decltype(rows.data()) {
    const auto row = std::ranges::find_if(rows, [&](const Activity& each) {
        return each.of == of && each.owner == owner &&
               (each.kind == ActivityKind::kMigration) == migration;
    });
    return row != rows.end() ? &*row : nullptr;
}

template <class Rows>
auto FindAny(Rows& rows, Owner of, HX_U16 owner) -> decltype(rows.data()) {
    const auto first = FindActivity(rows, of, owner, false);
    return first != nullptr ? first : FindActivity(rows, of, owner, true);
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
    if (activity.state != ActivityState::kRunning || now <= activity.since) return activity.done;
    const Sectors left = activity.total - std::min(activity.done, activity.total);
    const auto milliseconds = static_cast<std::uint64_t>(now - activity.since);
    const std::uint64_t speed = std::max<std::uint64_t>(activity.speed, 1);
    // Whole seconds first, so that no product overflows 64 bits.
    if (milliseconds / 1000 > left / speed) return activity.total;
    return activity.done +
           std::min(left, milliseconds / 1000 * speed + milliseconds % 1000 * speed / 1000);
}

HX_U16 Percentage(const Activity& activity, Time now) {
    if (activity.total == 0) return 0;
    return static_cast<HX_U16>(Done(activity, now) * 100 / activity.total);
}

bool IsKind(const Activity* activity, ActivityKind kind) {
    return activity != nullptr && activity->kind == kind;
}

}  // namespace hxsim
