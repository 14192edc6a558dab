// Whether background activities can continue, have to wait, or have to end.
#include "rules/hxsim_activity_conditions.h"

#include <algorithm>
#include <vector>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_redundancy.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_activity_end.h"

namespace hxsim {
namespace {

bool IsThere(const Adapter& adapter, Owner of, HX_U16 owner) {
    switch (of) {
        case Owner::kVirtualDisk:
            return Find(adapter.virtual_disks, owner) != nullptr;
        case Owner::kDiskGroup:
            return Find(adapter.disk_groups, owner) != nullptr;
        case Owner::kDisk:
            break;
    }
    return Find(adapter.disks, owner) != nullptr;
}

// Pauses the activity, or resumes it when the controller had paused it. Returns whether it changed.
bool PauseWhile(Settling& settling, Activity& activity, bool pause) {
    if (pause && activity.state == ActivityState::kRunning) {
        AutoPause(settling.adapter, settling.now, activity);
        return true;
    }
    if (!pause && activity.state == ActivityState::kAutoPaused) {
        AutoResume(settling.adapter, settling.now, activity);
        return true;
    }
    return false;
}

bool End(Settling& settling, const Activity& activity) {
    Fail(settling.adapter, settling.now, activity.id);
    return true;
}

// Whether the migration would leave the virtual disk unusable because of the targets it has lost.
bool IsInVain(const Adapter& adapter, const Activity& migration, HX_U16 virtual_disk) {
    Positions lost;
    for (const Block& block : adapter.blocks) {
        if (block.virtual_disk != virtual_disk || !block.target) continue;
        lost[block.position] = block.state != State::kOptimal || !IsReady(adapter, block.disk);
    }
    return !IsUsable(StateOfArray(migration.level, migration.legs, migration.width, lost));
}

bool IsInVain(const Adapter& adapter, const Activity& migration) {
    if (migration.of == Owner::kVirtualDisk) return IsInVain(adapter, migration, migration.owner);
    return std::ranges::any_of(adapter.virtual_disks, [&](const VirtualDisk& each) {
        return each.group == migration.owner && IsInVain(adapter, migration, each.id);
    });
}

State StateOfOwner(const Adapter& adapter, const Activity& activity) {
    if (activity.of == Owner::kVirtualDisk) {
        return StateOf(adapter, *Find(adapter.virtual_disks, activity.owner));
    }
    return StateOf(adapter, *Find(adapter.disk_groups, activity.owner));
}

// Calls settle(activity) for each activity; finds it anew by ID, since settle may end it. Returns
// whether any call returned true.
template <class Settle>
bool ForEachActivity(Adapter& adapter, Settle settle) {
    std::vector<HX_U16> ids;
    for (const Activity& each : adapter.activities) ids.push_back(each.id);
    bool changed = false;
    for (const HX_U16 id : ids) {
        Activity* const activity = Find(adapter.activities, id);
        if (activity != nullptr && settle(*activity)) changed = true;
    }
    return changed;
}

bool HasRebuildingBlock(const Adapter& adapter, HX_U16 virtual_disk) {
    return std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        return block.virtual_disk == virtual_disk && !block.target &&
               block.state == State::kRebuilding;
    });
}

bool HasBadTarget(const Adapter& adapter, const Activity& copyback) {
    return std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        if (!block.target || IsReady(adapter, block.disk)) return false;
        const VirtualDisk* const owner = Find(adapter.virtual_disks, block.virtual_disk);
        if (owner == nullptr) return false;
        return copyback.of == Owner::kDiskGroup ? owner->group == copyback.owner
                                                : owner->id == copyback.owner;
    });
}

bool CanGoOn(const Adapter& adapter, const Activity& activity) {
    const State state = StateOfOwner(adapter, activity);
    switch (activity.kind) {
        case ActivityKind::kRebuild:
            return IsUsable(state) && HasRebuildingBlock(adapter, activity.owner);
        case ActivityKind::kCopyback:
            return state == State::kOptimal && !HasBadTarget(adapter, activity);
        case ActivityKind::kCheck:
        case ActivityKind::kFix:
        case ActivityKind::kInitQuick:
        case ActivityKind::kInitBackground:
        case ActivityKind::kInitForeground:
        case ActivityKind::kMigration:
        case ActivityKind::kNone:
        case ActivityKind::kMediaPatrol:
        case ActivityKind::kDataScrub:
            break;
    }
    return IsUsable(state);
}

bool TakesPartInRebuild(const Adapter& adapter, HX_U16 disk) {
    return std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        return block.disk == disk && block.virtual_disk != kNoVirtualDisk &&
               IsKind(ActivityOf(adapter, Owner::kVirtualDisk, block.virtual_disk),
                      ActivityKind::kRebuild);
    });
}

}  // namespace

bool DropOrphans(Settling& settling) {
    std::erase_if(settling.adapter.activities, [&](const Activity& each) {
        return !IsThere(settling.adapter, each.of, each.owner);
    });
    return false;
}

bool SettleMigrations(Settling& settling) {
    return ForEachActivity(settling.adapter, [&](Activity& each) {
        if (each.kind != ActivityKind::kMigration) return false;
        if (IsInVain(settling.adapter, each)) return End(settling, each);
        const bool waits = StateOfOwner(settling.adapter, each) != State::kOptimal;
        return PauseWhile(settling, each, waits);
    });
}

bool SettleActivities(Settling& settling) {
    return ForEachActivity(settling.adapter, [&](Activity& each) {
        if (each.of == Owner::kDisk || each.kind == ActivityKind::kMigration) return false;
        return !CanGoOn(settling.adapter, each) && End(settling, each);
    });
}

bool SettleDiskActivities(Settling& settling) {
    return ForEachActivity(settling.adapter, [&](Activity& each) {
        if (each.of != Owner::kDisk) return false;
        if (!IsReady(settling.adapter, each.owner)) return End(settling, each);
        return PauseWhile(settling, each, TakesPartInRebuild(settling.adapter, each.owner));
    });
}

}  // namespace hxsim
