// Hot spares: when a spare steps in, for which position, and when it becomes a spare again.
#include "rules/hxsim_hot_spare.h"

#include <set>
#include <utility>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_disk_fit.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_home.h"
#include "model/hxsim_members.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_rebuild.h"

namespace hxsim {
namespace {

// The disk stops being a spare and remembers which kind it was.
void StepIn(Adapter& adapter, Time now, HX_U16 id) {
    Disk* const disk = Find(adapter.disks, id);
    if (disk->spare == Spare::kNone) return;
    disk->spare_before = std::exchange(disk->spare, Spare::kNone);
    disk->spare_group_before = std::exchange(disk->spare_group, kNoId);
    Queue(adapter, now, EventKind::kSpareRemoved, id);
}

// Sets the disk that serves the position; unless it stepped in as a spare, it becomes the home as
// well.
void MoveIn(Adapter& adapter, Home* home, HX_U16 id) {
    if (home == nullptr) return;
    home->disk = id;
    if (Find(adapter.disks, id)->spare_before == Spare::kNone) home->home = id;
}

void ReleaseIfThere(Adapter& adapter, const Block* block) {
    if (block != nullptr) Release(adapter, block->id);
}

// The smallest disk that suits; of equal disks the one with the lowest ID.
template <class Suits>
const Disk* SmallestSpare(const Adapter& adapter, Suits suits) {
    const Disk* best = nullptr;
    for (const Disk& each : adapter.disks) {
        if (!suits(each)) continue;
        if (best == nullptr || each.sectors < best->sectors) best = &each;
    }
    return best;
}

template <class Array>
const Disk* FindSpare(const Adapter& adapter, const Array& array, HX_U16 group) {
    const auto is = [&](Spare kind) {
        return [&adapter, &array, group, kind](const Disk& disk) {
            return disk.spare == kind && (kind == Spare::kGlobal || disk.spare_group == group) &&
                   CanServe(adapter, array, disk) == Status::kSuccess;
        };
    };
    const Disk* const own = group == kNoId ? nullptr : SmallestSpare(adapter, is(Spare::kGroup));
    return own != nullptr ? own : SmallestSpare(adapter, is(Spare::kGlobal));
}

// A disk that already stands in for the same home at another virtual disk.
const Disk* FindStandIn(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U16 home) {
    for (const Home& each : adapter.homes) {
        if (each.of != Owner::kVirtualDisk || each.home != home || each.disk == home) continue;
        const Disk* const disk = FindHomeDisk(adapter, virtual_disk, each.disk);
        if (disk != nullptr) return disk;
    }
    return nullptr;
}

const Disk* FindReplacement(const Adapter& adapter, const VirtualDisk& virtual_disk,
                            HX_U8 position) {
    const Home* const home = HomeOf(adapter, virtual_disk, position);
    if (home != nullptr && home->home != kNoId) {
        if (const Disk* const disk = FindHomeDisk(adapter, virtual_disk, home->home)) return disk;
        if (const Disk* const disk = FindStandIn(adapter, virtual_disk, home->home)) return disk;
    }
    return FindSpare(adapter, virtual_disk, kNoId);
}

const Disk* FindReplacement(const Adapter& adapter, const DiskGroup& group, HX_U8 position) {
    const Home* const home = HomeOf(adapter, Owner::kDiskGroup, group.id, position);
    if (home != nullptr) {
        if (const Disk* const disk = FindHomeDisk(adapter, group, home->home)) return disk;
    }
    return FindSpare(adapter, group, group.id);
}

const Disk* LargestSpare(const Adapter& adapter, HX_U16 group) {
    const Disk* largest = nullptr;
    for (const Disk& each : adapter.disks) {
        const bool suits = each.spare == Spare::kGlobal ||
                           (each.spare == Spare::kGroup && each.spare_group == group);
        if (!suits || !IsReady(each)) continue;
        if (largest == nullptr || each.sectors > largest->sectors) largest = &each;
    }
    return largest;
}

// Whether disks may step in on a disk group: every virtual disk on it can be rebuilt (a freed block
// cannot come back), no activity prevents that, and at least one of them has automatic rebuild. A
// group without virtual disks takes disks as well.
bool TakesDisks(const Adapter& adapter, const DiskGroup& group) {
    if (adapter.config.AutoRebuildOn == 0) return false;
    bool any = false;
    bool asked = false;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group != group.id) continue;
        any = true;
        asked = asked || each.auto_rebuild;
        if (!MayRebuild(adapter, each)) return false;
    }
    if (any) return asked;
    return IsUsable(StateOf(adapter, group)) && !IsBusy(adapter, group);
}

Sectors NeededBy(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const DiskGroup* const group = Find(adapter.disk_groups, virtual_disk.group);
    return group != nullptr ? SectorsNeeded(adapter, *group) : SectorsNeeded(adapter, virtual_disk);
}

}  // namespace

void PutInto(Adapter& adapter, Time now, const VirtualDisk& virtual_disk, HX_U8 position,
             HX_U16 disk) {
    const Sectors sectors = SectorsNeeded(adapter, virtual_disk);
    StepIn(adapter, now, disk);
    ReleaseIfThere(adapter, BlockOf(adapter, virtual_disk.id, position));
    const Sectors start = FirstFree(adapter, disk, sectors)->start;
    Cut(adapter, disk, start, sectors, virtual_disk.id, position).state = State::kDegraded;
    MoveIn(adapter, HomeOf(adapter, virtual_disk, position), disk);
}

void PutInto(Adapter& adapter, Time now, const DiskGroup& group, HX_U8 position, HX_U16 disk) {
    StepIn(adapter, now, disk);
    for (const VirtualDisk* const each : MembersOf(adapter, group.id)) {
        const Block* const like = AnyBlockOf(adapter, each->id);
        if (like == nullptr) continue;
        const Sectors start = like->start;
        const Sectors sectors = like->sectors;
        ReleaseIfThere(adapter, BlockOf(adapter, each->id, position));
        Cut(adapter, disk, start, sectors, each->id, position).state = State::kDegraded;
    }
    MoveIn(adapter, HomeOf(adapter, Owner::kDiskGroup, group.id, position), disk);
}

bool ReplaceLostDisks(Settling& settling) {
    Adapter& adapter = settling.adapter;
    bool changed = false;
    for (const DiskGroup& group : adapter.disk_groups) {
        for (unsigned i = 0; i < group.width && TakesDisks(adapter, group); ++i) {
            const auto position = static_cast<HX_U8>(i);
            const Home* const home = HomeOf(adapter, Owner::kDiskGroup, group.id, position);
            if (home == nullptr || !NeedsDisk(adapter, *home)) continue;
            const Disk* const disk = FindReplacement(adapter, group, position);
            if (disk == nullptr) continue;
            PutInto(adapter, settling.now, group, position, disk->id);
            changed = true;
        }
    }
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group != kNoId || !RebuildsByItself(adapter, each)) continue;
        for (unsigned i = 0; i < each.width && MayRebuild(adapter, each); ++i) {
            const auto position = static_cast<HX_U8>(i);
            if (!NeedsDisk(adapter, each, position)) continue;
            const Disk* const disk = FindReplacement(adapter, each, position);
            if (disk == nullptr) continue;
            PutInto(adapter, settling.now, each, position, disk->id);
            changed = true;
        }
    }
    return changed;
}

void TellOfSmallSpares(Settling& settling) {
    Adapter& adapter = settling.adapter;
    std::set<HX_U16> told;  // disk groups
    for (const HX_U16 id : settling.losses) {
        const VirtualDisk* const lost = Find(adapter.virtual_disks, id);
        if (lost == nullptr || !RebuildsByItself(adapter, *lost) || !MayRebuild(adapter, *lost)) {
            continue;
        }
        if (lost->group != kNoId && !told.insert(lost->group).second) continue;
        const Disk* const spare = LargestSpare(adapter, lost->group);
        if (spare == nullptr || UsableSectors(*spare) >= NeededBy(adapter, *lost)) continue;
        Queue(adapter, settling.now, EventKind::kDiskTooSmallForRebuild, spare->id);
    }
}

bool ReturnSpare(Adapter& adapter, Time now, Disk& disk) {
    if (disk.spare_before == Spare::kNone || !IsFree(adapter, disk)) return false;
    const Spare kind = std::exchange(disk.spare_before, Spare::kNone);
    const HX_U16 group = std::exchange(disk.spare_group_before, kNoId);
    disk.spare = kind;
    disk.spare_group = group;
    Queue(adapter, now, EventKind::kSpareAssigned, disk.id);
    return true;
}

bool ReturnSpares(Settling& settling) {
    bool changed = false;
    for (Disk& each : settling.adapter.disks) {
        changed = ReturnSpare(settling.adapter, settling.now, each) || changed;
    }
    return changed;
}

}  // namespace hxsim
