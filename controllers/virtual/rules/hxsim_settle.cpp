// The consequences of whatever has just changed, drawn until nothing follows any more.
#include <algorithm>
#include <set>
#include <utility>

#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_repair.h"

namespace hxsim {
namespace {

bool IsUsable(HX_U8 state) { return state < HXSIM_STATE_OFFLINE; }

EventKind EventOf(HX_U8 state) {
    switch (state) {
        case HXSIM_STATE_OFFLINE:
            return kVirtualDiskOffline;
        case HXSIM_STATE_DEGRADED:
            return kVirtualDiskDegraded;
        case HXSIM_STATE_PARTIALLY_OPTIMAL:
            return kVirtualDiskPartiallyOptimal;
        default:
            return kVirtualDiskOnline;
    }
}

class Settlement {
public:
    Settlement(Adapter& adapter, Time now) : adapter_(adapter), now_(now) {}

    void Run() {
        do {
            changed_ = false;
            DropOrphans();
            MarkLost();
            FollowBlocks();
            AnnounceStates();
            SettleMigrations();
            SettleActivities();
            ReplaceDisks();
            StartRebuilds();
            StartCopybacks();
            SettleDiskActivities();
            ReturnSpares();
        } while (changed_);
        for (DiskGroup& group : adapter_.disk_groups) group.state = StateOf(adapter_, group);
        TellOfSmallSpares();
        UpdateAlarm(adapter_, new_cause_);
    }

private:
    // ---- What has come to pass ----

    bool IsThere(Owner of, HX_U16 owner) const {
        switch (of) {
            case Owner::kVirtualDisk:
                return Find(adapter_.virtual_disks, owner) != nullptr;
            case Owner::kDiskGroup:
                return Find(adapter_.disk_groups, owner) != nullptr;
            default:
                return Find(adapter_.disks, owner) != nullptr;
        }
    }

    // What ran on something that is gone has gone with it.
    void DropOrphans() {
        std::erase_if(adapter_.activities,
                      [&](const Activity& each) { return !IsThere(each.of, each.owner); });
    }

    bool IsOnReadyDisk(const Block& block) const {
        const Disk* const disk = Find(adapter_.disks, block.disk);
        return disk != nullptr && IsReady(*disk);
    }

    // Writes go on without the disks that are not ready, so that what lies there falls out of date;
    // nothing is written any more once the virtual disk is offline.
    void MarkLost() {
        for (const VirtualDisk& each : adapter_.virtual_disks) {
            if (!IsUsable(StateOf(adapter_, each))) continue;
            for (Block& block : adapter_.blocks) {
                if (block.virtual_disk != each.id || block.state == HXSIM_STATE_DEGRADED ||
                    IsOnReadyDisk(block)) {
                    continue;
                }
                block.state = HXSIM_STATE_DEGRADED;
                losses_.insert(each.id);
                changed_ = true;
            }
        }
    }

    // A position's disk is the one where its block lies.
    void FollowBlocks() {
        for (const VirtualDisk& each : adapter_.virtual_disks) {
            for (unsigned i = 0; i < each.width; ++i) {
                const auto position = static_cast<HX_U8>(i);
                Home* const home = HomeOf(adapter_, each, position);
                const Block* const block = BlockOf(adapter_, each.id, position);
                if (home != nullptr) home->disk = block == nullptr ? kNoId : block->disk;
            }
        }
    }

    bool MissesDisk(const VirtualDisk& virtual_disk) const {
        return std::ranges::any_of(adapter_.blocks, [&](const Block& block) {
            if (block.virtual_disk != virtual_disk.id || block.target) return false;
            const Disk* const disk = Find(adapter_.disks, block.disk);
            return disk == nullptr || !disk->present;
        });
    }

    void AnnounceStates() {
        for (VirtualDisk& each : adapter_.virtual_disks) {
            const HX_U8 state = StateOf(adapter_, each);
            const HX_U8 before = std::exchange(each.state, state);
            if (state == before) continue;
            changed_ = true;
            if (state == HXSIM_STATE_FOREIGN) continue;
            // The import has announced a foreign one.
            if (before == HXSIM_STATE_FOREIGN && state == HXSIM_STATE_OPTIMAL) continue;
            Queue(adapter_, now_, EventOf(state), each.id);
            if (state < before) continue;
            losses_.insert(each.id);
            new_cause_ = new_cause_ || CausesAlarm(state);
            if (MissesDisk(each)) Queue(adapter_, now_, kVirtualDiskMissesDisks, each.id);
        }
    }

    // ---- What runs ----

    void Give(Activity& activity, bool pause) {
        if (pause && activity.state == HXSIM_ACTIVITY_RUNNING) {
            AutoPause(adapter_, now_, activity);
            changed_ = true;
        } else if (!pause && activity.state == HXSIM_ACTIVITY_AUTO_PAUSED) {
            AutoResume(adapter_, now_, activity);
            changed_ = true;
        }
    }

    void End(const Activity& activity) {
        Fail(adapter_, now_, activity.id);
        changed_ = true;
    }

    // Whether a virtual disk would be of no use with what its targets have lost.
    bool IsInVain(const Activity& migration, HX_U16 virtual_disk) const {
        Positions lost;
        for (const Block& block : adapter_.blocks) {
            if (block.virtual_disk != virtual_disk || !block.target) continue;
            lost[block.position] = block.state != HXSIM_STATE_OPTIMAL || !IsOnReadyDisk(block);
        }
        return !IsUsable(StateOfArray(migration.level, migration.legs, migration.width, lost));
    }

    bool IsInVain(const Activity& migration) const {
        if (migration.of == Owner::kVirtualDisk) return IsInVain(migration, migration.owner);
        return std::ranges::any_of(adapter_.virtual_disks, [&](const VirtualDisk& each) {
            return each.group == migration.owner && IsInVain(migration, each.id);
        });
    }

    HX_U8 StateOfOwner(const Activity& activity) const {
        if (activity.of == Owner::kVirtualDisk) {
            return StateOf(adapter_, *Find(adapter_.virtual_disks, activity.owner));
        }
        return StateOf(adapter_, *Find(adapter_.disk_groups, activity.owner));
    }

    // Of all activities, by ID: `settle` may end the one that it is given.
    template <class Settle>
    void ForEachActivity(Settle settle) {
        std::vector<HX_U16> ids;
        for (const Activity& each : adapter_.activities) ids.push_back(each.id);
        for (const HX_U16 id : ids) {
            if (Activity* const activity = Find(adapter_.activities, id)) settle(*activity);
        }
    }

    // A migration waits while its virtual disks are not whole.
    void SettleMigrations() {
        ForEachActivity([&](Activity& each) {
            if (each.kind != HXSIM_ACTIVITY_MIGRATION) return;
            if (IsInVain(each)) return End(each);
            Give(each, StateOfOwner(each) != HXSIM_STATE_OPTIMAL);
        });
    }

    bool HasRebuildingBlock(HX_U16 virtual_disk) const {
        return std::ranges::any_of(adapter_.blocks, [&](const Block& block) {
            return block.virtual_disk == virtual_disk && !block.target &&
                   block.state == HXSIM_STATE_REBUILDING;
        });
    }

    bool HasBadTarget(const Activity& copyback) const {
        return std::ranges::any_of(adapter_.blocks, [&](const Block& block) {
            if (!block.target || IsOnReadyDisk(block)) return false;
            const VirtualDisk* const owner = Find(adapter_.virtual_disks, block.virtual_disk);
            if (owner == nullptr) return false;
            return copyback.of == Owner::kDiskGroup ? owner->group == copyback.owner
                                                    : owner->id == copyback.owner;
        });
    }

    bool CanGoOn(const Activity& activity) const {
        const HX_U8 state = StateOfOwner(activity);
        switch (activity.kind) {
            case HXSIM_ACTIVITY_REBUILD:
                return IsUsable(state) && HasRebuildingBlock(activity.owner);
            case HXSIM_ACTIVITY_COPYBACK:
                return state == HXSIM_STATE_OPTIMAL && !HasBadTarget(activity);
            default:
                return IsUsable(state);
        }
    }

    void SettleActivities() {
        ForEachActivity([&](Activity& each) {
            if (each.of == Owner::kDisk || each.kind == HXSIM_ACTIVITY_MIGRATION) return;
            if (!CanGoOn(each)) End(each);
        });
    }

    bool IsBeingRebuilt(HX_U16 virtual_disk) const {
        const Activity* const activity =
            ActivityOf(std::as_const(adapter_), Owner::kVirtualDisk, virtual_disk);
        return activity != nullptr && activity->kind == HXSIM_ACTIVITY_REBUILD;
    }

    // Patrols and scrubs make way for the rebuilds that their disk takes part in.
    void SettleDiskActivities() {
        ForEachActivity([&](Activity& each) {
            if (each.of != Owner::kDisk) return;
            if (!IsReady(*Find(adapter_.disks, each.owner))) return End(each);
            Give(each, std::ranges::any_of(adapter_.blocks, [&](const Block& block) {
                     return block.disk == each.owner && block.virtual_disk != kNoVirtualDisk &&
                            IsBeingRebuilt(block.virtual_disk);
                 }));
        });
    }

    // ---- Repairs ----

    bool IsAutomatic(const VirtualDisk& virtual_disk) const {
        return adapter_.config.AutoRebuildOn != 0 && virtual_disk.auto_rebuild;
    }

    // Whether disks may step in on a disk group: every virtual disk on it can do without what is
    // lost (a block that is given up cannot come back), none is at work, and one of them asks for
    // it; one without virtual disks asks for it, too.
    bool TakesDisks(const DiskGroup& group) const {
        if (adapter_.config.AutoRebuildOn == 0) return false;
        bool any = false;
        bool asked = false;
        for (const VirtualDisk& each : adapter_.virtual_disks) {
            if (each.group != group.id) continue;
            any = true;
            asked = asked || each.auto_rebuild;
            if (!MayRebuild(adapter_, each)) return false;
        }
        if (any) return asked;
        return IsUsable(StateOf(adapter_, group)) && !IsBusy(adapter_, group);
    }

    void ReplaceDisks() {
        for (const DiskGroup& group : adapter_.disk_groups) {
            for (unsigned i = 0; i < group.width && TakesDisks(group); ++i) {
                const auto position = static_cast<HX_U8>(i);
                const Home* const home = HomeOf(adapter_, Owner::kDiskGroup, group.id, position);
                if (home == nullptr || !NeedsDisk(adapter_, *home)) continue;
                const Disk* const disk = FindReplacement(adapter_, group, position);
                if (disk == nullptr) continue;
                PutInto(adapter_, now_, group, position, disk->id);
                changed_ = true;
            }
        }
        for (const VirtualDisk& each : adapter_.virtual_disks) {
            if (each.group != kNoId || !IsAutomatic(each)) continue;
            for (unsigned i = 0; i < each.width && MayRebuild(adapter_, each); ++i) {
                const auto position = static_cast<HX_U8>(i);
                if (!NeedsDisk(adapter_, each, position)) continue;
                const Disk* const disk = FindReplacement(adapter_, each, position);
                if (disk == nullptr) continue;
                PutInto(adapter_, now_, each, position, disk->id);
                changed_ = true;
            }
        }
    }

    void StartRebuilds() {
        for (const VirtualDisk& each : adapter_.virtual_disks) {
            if (!IsAutomatic(each) || !MayRebuild(adapter_, each) ||
                !HasBlocksToRebuild(adapter_, each, false)) {
                continue;
            }
            StartRebuild(adapter_, now_, each.id);
            changed_ = true;
        }
    }

    void StartCopybacks() {
        if (adapter_.config.CopyBack == 0) return;
        for (const DiskGroup& group : adapter_.disk_groups) {
            changed_ = StartCopyback(adapter_, now_, group) || changed_;
        }
        for (const VirtualDisk& each : adapter_.virtual_disks) {
            changed_ = StartCopyback(adapter_, now_, each) || changed_;
        }
    }

    void ReturnSpares() {
        for (Disk& each : adapter_.disks) {
            changed_ = ReturnSpare(adapter_, now_, each) || changed_;
        }
    }

    // A loss for which there is a spare, but none that is large enough.
    void TellOfSmallSpares() {
        std::set<HX_U16> told;  // disk groups
        for (const HX_U16 id : losses_) {
            const VirtualDisk* const lost = Find(adapter_.virtual_disks, id);
            if (lost == nullptr || !IsAutomatic(*lost) || !MayRebuild(adapter_, *lost)) continue;
            if (lost->group != kNoId && !told.insert(lost->group).second) continue;
            const Disk* const spare = LargestSpare(adapter_, lost->group);
            if (spare == nullptr || UsableSectors(*spare) >= NeededBy(*lost)) continue;
            Queue(adapter_, now_, kDiskTooSmallForRebuild, spare->id);
        }
    }

    Sectors NeededBy(const VirtualDisk& virtual_disk) const {
        const DiskGroup* const group = Find(adapter_.disk_groups, virtual_disk.group);
        return group != nullptr ? SectorsNeeded(adapter_, *group)
                                : SectorsNeeded(adapter_, virtual_disk);
    }

    Adapter& adapter_;
    const Time now_;
    bool changed_ = false;
    bool new_cause_ = false;
    std::set<HX_U16> losses_;  // virtual disks that have just lost something
};

}  // namespace

void Settle(Adapter& adapter, Time now) { Settlement(adapter, now).Run(); }

}  // namespace hxsim
