// Repairs: disks that step in for lost ones, rebuilds onto them, and the way back home.
#include "rules/hxsim_repair.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

bool IsReadyDisk(const Adapter& adapter, HX_U16 id) {
    const Disk* const disk = Find(adapter.disks, id);
    return disk != nullptr && IsReady(*disk);
}

const Home* HomeOf(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position) {
    return virtual_disk.group == kNoId
               ? HomeOf(adapter, Owner::kVirtualDisk, virtual_disk.id, position)
               : HomeOf(adapter, Owner::kDiskGroup, virtual_disk.group, position);
}

// Any block that serves the virtual disk: all have the same size.
const Block* AnyBlockOf(const Adapter& adapter, HX_U16 virtual_disk) {
    const auto found = std::ranges::find_if(adapter.blocks, [&](const Block& block) {
        return block.virtual_disk == virtual_disk && !block.target;
    });
    return found == adapter.blocks.end() ? nullptr : &*found;
}

// The virtual disks of a disk group.
std::vector<const VirtualDisk*> MembersOf(const Adapter& adapter, HX_U16 group) {
    std::vector<const VirtualDisk*> members;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group == group) members.push_back(&each);
    }
    return members;
}

// The disk is no spare any more, but remembers what kind it was.
void StepIn(Adapter& adapter, Time now, HX_U16 id) {
    Disk* const disk = Find(adapter.disks, id);
    if (disk->spare == Spare::kNone) return;
    disk->spare_before = std::exchange(disk->spare, Spare::kNone);
    disk->spare_group_before = std::exchange(disk->spare_group, kNoId);
    Queue(adapter, now, kSpareRemoved, id);
}

// A disk on which a position now belongs for good is no spare that will be one again, unless it
// stands in for yet another disk.
void SettleDown(Adapter& adapter, HX_U16 id) {
    const bool stands_in = std::ranges::any_of(adapter.homes, [&](const Home& each) {
        return each.disk == id && each.home != id && each.home != kNoId;
    });
    Disk* const disk = Find(adapter.disks, id);
    if (disk == nullptr || stands_in) return;
    disk->spare_before = Spare::kNone;
    disk->spare_group_before = kNoId;
}

void BelongThere(Adapter& adapter, Home& home) {
    if (home.disk == kNoId) return;
    home.home = home.disk;
    SettleDown(adapter, home.disk);
}

// Sets the home's disk; a disk that has not come as a spare belongs there from now on.
void MoveIn(Adapter& adapter, Home* home, HX_U16 id) {
    if (home == nullptr) return;
    home->disk = id;
    if (Find(adapter.disks, id)->spare_before == Spare::kNone) home->home = id;
}

void ReleaseIfThere(Adapter& adapter, const Block* block) {
    if (block != nullptr) Release(adapter, block->id);
}

// The smallest spare of a kind that is large enough, then the one with the lowest ID.
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
                   CanServe(adapter, array, disk) == HX_SUCCESS;
        };
    };
    const Disk* const own = group == kNoId ? nullptr : SmallestSpare(adapter, is(Spare::kGroup));
    return own != nullptr ? own : SmallestSpare(adapter, is(Spare::kGlobal));
}

// A home that is no spare and can serve; a home that was made a spare of is one.
template <class Array>
const Disk* FindHomeDisk(const Adapter& adapter, const Array& array, HX_U16 id) {
    const Disk* const disk = Find(adapter.disks, id);
    const bool serves = disk != nullptr && disk->spare == Spare::kNone &&
                        CanServe(adapter, array, *disk) == HX_SUCCESS;
    return serves ? disk : nullptr;
}

// A disk that has already stepped in where the same home is lost.
const Disk* FindStandIn(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U16 home) {
    for (const Home& each : adapter.homes) {
        if (each.of != Owner::kVirtualDisk || each.home != home || each.disk == home) continue;
        const Disk* const disk = FindHomeDisk(adapter, virtual_disk, each.disk);
        if (disk != nullptr) return disk;
    }
    return nullptr;
}

bool IsDisplaced(const Home& home) {
    return home.disk != kNoId && home.home != kNoId && home.disk != home.home;
}

void SwapIn(Adapter& adapter, HX_U16 virtual_disk) {
    for (bool found = true; found;) {
        const auto target = std::ranges::find_if(adapter.blocks, [&](const Block& block) {
            return block.virtual_disk == virtual_disk && block.target;
        });
        found = target != adapter.blocks.end();
        if (!found) break;
        const HX_U16 id = target->id;
        ReleaseIfThere(adapter, BlockOf(adapter, virtual_disk, target->position));
        Find(adapter.blocks, id)->target = false;
    }
}

void ReturnHome(Adapter& adapter, Owner of, HX_U16 owner, HX_U16 disk) {
    for (Home& home : adapter.homes) {
        if (home.of == of && home.owner == owner && home.home == disk) home.disk = disk;
    }
}

// The disks on which targets of a virtual disk lie.
std::vector<HX_U16> TargetDisks(const Adapter& adapter, HX_U16 virtual_disk) {
    std::vector<HX_U16> disks;
    for (const Block& block : adapter.blocks) {
        if (block.virtual_disk == virtual_disk && block.target) disks.push_back(block.disk);
    }
    return disks;
}

// The virtual disks that a copyback is about.
std::vector<HX_U16> Concerned(const Adapter& adapter, const Activity& copyback) {
    if (copyback.of == Owner::kVirtualDisk) return {copyback.owner};
    std::vector<HX_U16> ids;
    for (const VirtualDisk* const each : MembersOf(adapter, copyback.owner)) {
        ids.push_back(each->id);
    }
    return ids;
}

// Whether what serves a position is whole and larger than a disk that it might return to.
bool IsTooLargeFor(const Adapter& adapter, const Home& home, const Disk& disk) {
    if (home.of == Owner::kVirtualDisk) {
        const VirtualDisk* const row = Find(adapter.virtual_disks, home.owner);
        return row != nullptr && StateOf(adapter, *row) == HXSIM_STATE_OPTIMAL &&
               SectorsNeeded(adapter, *row) > UsableSectors(disk);
    }
    const DiskGroup* const group = Find(adapter.disk_groups, home.owner);
    return group != nullptr && StateOf(adapter, *group) == HXSIM_STATE_OPTIMAL &&
           SectorsNeeded(adapter, *group) > UsableSectors(disk);
}

bool MayCopyBack(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    return StateOf(adapter, virtual_disk) == HXSIM_STATE_OPTIMAL && !IsBusy(adapter, virtual_disk);
}

}  // namespace

Home* HomeOf(Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position) {
    return virtual_disk.group == kNoId
               ? HomeOf(adapter, Owner::kVirtualDisk, virtual_disk.id, position)
               : HomeOf(adapter, Owner::kDiskGroup, virtual_disk.group, position);
}

bool NeedsDisk(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position) {
    const Block* const block = BlockOf(adapter, virtual_disk.id, position);
    return block == nullptr || !IsReadyDisk(adapter, block->disk);
}

bool NeedsDisk(const Adapter& adapter, const Home& home) {
    return !IsReadyDisk(adapter, home.disk);
}

Sectors SectorsNeeded(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const Block* const block = AnyBlockOf(adapter, virtual_disk.id);
    return block == nullptr ? 0 : block->sectors;
}

Sectors SectorsNeeded(const Adapter& adapter, const DiskGroup& group) {
    // As much as the smallest of its disks has, so that the group does not shrink, and no less than
    // its virtual disks have taken.
    Sectors smallest = UINT64_MAX;
    for (const Home& home : adapter.homes) {
        if (home.of != Owner::kDiskGroup || home.owner != group.id) continue;
        const Disk* const disk = Find(adapter.disks, home.disk != kNoId ? home.disk : home.home);
        if (disk != nullptr) smallest = std::min(smallest, UsableSectors(*disk));
    }
    Sectors taken = 0;
    for (const VirtualDisk* const each : MembersOf(adapter, group.id)) {
        const Block* const block = AnyBlockOf(adapter, each->id);
        if (block != nullptr) taken = std::max(taken, block->start + block->sectors);
    }
    return smallest == UINT64_MAX ? taken : std::max(taken, smallest);
}

HX_U8 CanServe(const Adapter& adapter, const VirtualDisk& virtual_disk, const Disk& disk) {
    if (!IsReady(disk)) return HXSIM_DISK_NOT_READY;
    if (disk.spare == Spare::kGroup || GroupOf(adapter, disk.id) != nullptr) {
        return HXSIM_DISK_TAKEN;
    }
    const bool in_use = std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        return block.disk == disk.id && block.virtual_disk == virtual_disk.id;
    });
    if (in_use) return HXSIM_DISK_IN_USE;
    const Sectors sectors = SectorsNeeded(adapter, virtual_disk);
    const Block* const free = FirstFree(adapter, disk.id, sectors);
    if (free == nullptr || sectors == 0) return HXSIM_NO_SPACE;
    const bool one_more = free->sectors != sectors;
    return one_more && IsFullOfBlocks(adapter, disk.id) ? HX_U8{HXSIM_TOO_MANY_BLOCKS}
                                                        : HX_U8{HX_SUCCESS};
}

HX_U8 CanServe(const Adapter& adapter, const DiskGroup& group, const Disk& disk) {
    if (!IsReady(disk)) return HXSIM_DISK_NOT_READY;
    if (disk.spare == Spare::kGroup && disk.spare_group != group.id) return HXSIM_DISK_TAKEN;
    if (IsConfigured(adapter, disk.id)) return HXSIM_DISK_TAKEN;
    return UsableSectors(disk) < SectorsNeeded(adapter, group) ? HX_U8{HXSIM_NO_SPACE}
                                                               : HX_U8{HX_SUCCESS};
}

void PutInto(Adapter& adapter, Time now, const VirtualDisk& virtual_disk, HX_U8 position,
             HX_U16 disk) {
    const Sectors sectors = SectorsNeeded(adapter, virtual_disk);
    StepIn(adapter, now, disk);
    ReleaseIfThere(adapter, BlockOf(adapter, virtual_disk.id, position));
    const Sectors start = FirstFree(adapter, disk, sectors)->start;
    Cut(adapter, disk, start, sectors, virtual_disk.id, position).state = HXSIM_STATE_DEGRADED;
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
        Cut(adapter, disk, start, sectors, each->id, position).state = HXSIM_STATE_DEGRADED;
    }
    MoveIn(adapter, HomeOf(adapter, Owner::kDiskGroup, group.id, position), disk);
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

bool MayRebuild(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const HX_U8 state = StateOf(adapter, virtual_disk);
    if (state != HXSIM_STATE_DEGRADED && state != HXSIM_STATE_PARTIALLY_OPTIMAL) return false;
    if (const Activity* const group = ActivityOf(adapter, Owner::kDiskGroup, virtual_disk.group);
        virtual_disk.group != kNoId && group != nullptr &&
        group->kind != HXSIM_ACTIVITY_MIGRATION) {
        return false;
    }
    const Activity* const activity = ActivityOf(adapter, Owner::kVirtualDisk, virtual_disk.id);
    if (activity == nullptr) return true;
    switch (activity->kind) {
        case HXSIM_ACTIVITY_CHECK:
        case HXSIM_ACTIVITY_FIX:
        case HXSIM_ACTIVITY_INIT_BACK:  // these end for it
        case HXSIM_ACTIVITY_MIGRATION:  // this waits for it
            return true;
        default:
            return false;
    }
}

bool HasBlocksToRebuild(const Adapter& adapter, const VirtualDisk& virtual_disk, bool held) {
    return std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        return block.virtual_disk == virtual_disk.id && !block.target &&
               (block.state == HXSIM_STATE_DEGRADED ||
                (held && block.state == HXSIM_STATE_REBUILDING)) &&
               IsReadyDisk(adapter, block.disk);
    });
}

void StartRebuild(Adapter& adapter, Time now, HX_U16 virtual_disk) {
    const Activity* const lesser = ActivityOf(adapter, Owner::kVirtualDisk, virtual_disk);
    if (lesser != nullptr && lesser->kind != HXSIM_ACTIVITY_MIGRATION) {
        Abort(adapter, now, lesser->id);
    }
    Activity rebuild;
    rebuild.kind = HXSIM_ACTIVITY_REBUILD;
    rebuild.of = Owner::kVirtualDisk;
    rebuild.owner = virtual_disk;
    for (Block& block : adapter.blocks) {
        if (block.virtual_disk != virtual_disk || block.target) continue;
        if (block.state == HXSIM_STATE_DEGRADED && IsReadyDisk(adapter, block.disk)) {
            block.state = HXSIM_STATE_REBUILDING;
        }
        rebuild.total = block.sectors;
    }
    Start(adapter, now, rebuild);
}

void FinishRebuild(Adapter& adapter, Time now, HX_U16 virtual_disk) {
    const VirtualDisk* const row = Find(adapter.virtual_disks, virtual_disk);
    if (row == nullptr) return;
    std::vector<HX_U16> homes;
    for (Block& block : adapter.blocks) {
        if (block.virtual_disk != virtual_disk || block.target ||
            block.state != HXSIM_STATE_REBUILDING) {
            continue;
        }
        block.state = HXSIM_STATE_OPTIMAL;
        Home* const home = HomeOf(adapter, *row, block.position);
        if (home == nullptr || !IsDisplaced(*home)) continue;
        if (adapter.config.CopyBack == 0) {
            BelongThere(adapter, *home);
        } else {
            homes.push_back(home->home);
        }
    }
    for (const HX_U16 home : homes) TellOfSmallHome(adapter, now, home);
}

void TellOfSmallHome(Adapter& adapter, Time now, HX_U16 id) {
    const Disk* const disk = Find(adapter.disks, id);
    if (adapter.config.CopyBack == 0 || disk == nullptr || !IsReady(*disk)) return;
    const bool too_small = std::ranges::any_of(adapter.homes, [&](const Home& home) {
        return home.home == id && IsDisplaced(home) && IsTooLargeFor(adapter, home, *disk);
    });
    if (too_small) Queue(adapter, now, kDiskTooSmallForCopyback, id);
}

bool StartCopyback(Adapter& adapter, Time now, const VirtualDisk& virtual_disk) {
    if (virtual_disk.group != kNoId || !MayCopyBack(adapter, virtual_disk)) return false;
    Activity copyback;
    copyback.kind = HXSIM_ACTIVITY_COPYBACK;
    copyback.of = Owner::kVirtualDisk;
    copyback.owner = virtual_disk.id;
    copyback.total = SectorsNeeded(adapter, virtual_disk);
    bool any = false;
    for (unsigned position = 0; position < virtual_disk.width; ++position) {
        const auto place = static_cast<HX_U8>(position);
        const Home* const home = HomeOf(std::as_const(adapter), virtual_disk, place);
        if (home == nullptr || !IsDisplaced(*home)) continue;
        const Disk* const disk = FindHomeDisk(adapter, virtual_disk, home->home);
        if (disk == nullptr) continue;
        const HX_U16 id = disk->id;
        const Sectors start = FirstFree(adapter, id, copyback.total)->start;
        Cut(adapter, id, start, copyback.total, virtual_disk.id, place).target = true;
        any = true;
    }
    if (any) Start(adapter, now, copyback);
    return any;
}

bool StartCopyback(Adapter& adapter, Time now, const DiskGroup& group) {
    const std::vector<const VirtualDisk*> members = MembersOf(adapter, group.id);
    const bool may =
        StateOf(adapter, group) == HXSIM_STATE_OPTIMAL && !IsBusy(adapter, group) &&
        std::ranges::all_of(members, [&](const auto* each) { return MayCopyBack(adapter, *each); });
    if (!may) return false;
    Activity copyback;
    copyback.kind = HXSIM_ACTIVITY_COPYBACK;
    copyback.of = Owner::kDiskGroup;
    copyback.owner = group.id;
    for (const VirtualDisk* const each : members) copyback.total += SectorsNeeded(adapter, *each);
    bool any = false;
    for (Home& home : adapter.homes) {
        if (home.of != Owner::kDiskGroup || home.owner != group.id || !IsDisplaced(home)) continue;
        const Disk* const disk = FindHomeDisk(adapter, group, home.home);
        if (disk == nullptr) continue;
        any = true;
        if (members.empty()) home.disk = home.home;  // nothing to copy
        for (const VirtualDisk* const each : members) {
            const Block* const like = AnyBlockOf(adapter, each->id);
            const Sectors start = like->start;
            const Sectors sectors = like->sectors;
            Cut(adapter, home.home, start, sectors, each->id, home.position).target = true;
        }
    }
    if (any && !members.empty()) Start(adapter, now, copyback);
    return any;
}

void FinishCopyback(Adapter& adapter, const Activity& copyback) {
    for (const HX_U16 virtual_disk : Concerned(adapter, copyback)) {
        const std::vector<HX_U16> disks = TargetDisks(adapter, virtual_disk);
        SwapIn(adapter, virtual_disk);
        for (const HX_U16 disk : disks) ReturnHome(adapter, copyback.of, copyback.owner, disk);
    }
}

void DropCopyback(Adapter& adapter, const Activity& copyback, bool settle_down) {
    for (const HX_U16 virtual_disk : Concerned(adapter, copyback)) {
        for (bool found = true; found;) {
            const auto target = std::ranges::find_if(adapter.blocks, [&](const Block& block) {
                return block.virtual_disk == virtual_disk && block.target;
            });
            found = target != adapter.blocks.end();
            if (!found) break;
            if (settle_down) {
                const VirtualDisk* const row = Find(adapter.virtual_disks, virtual_disk);
                Home* const home = HomeOf(adapter, *row, target->position);
                if (home != nullptr) BelongThere(adapter, *home);
            }
            Release(adapter, target->id);
        }
    }
}

bool ReturnSpare(Adapter& adapter, Time now, Disk& disk) {
    if (disk.spare_before == Spare::kNone || !IsFree(adapter, disk)) return false;
    const Spare kind = std::exchange(disk.spare_before, Spare::kNone);
    const HX_U16 group = std::exchange(disk.spare_group_before, kNoId);
    disk.spare = kind;
    disk.spare_group = group;
    Queue(adapter, now, kSpareAssigned, disk.id);
    return true;
}

}  // namespace hxsim
