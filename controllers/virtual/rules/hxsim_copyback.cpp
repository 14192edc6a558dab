// Copyback: a position that a stand-in disk serves returns to its home disk.
#include "rules/hxsim_copyback.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_disk_fit.h"
#include "model/hxsim_home.h"
#include "model/hxsim_members.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_event_queue.h"

namespace hxsim {
namespace {

// A disk that has become a position's home does not become a spare again, unless it still stands in
// for another disk.
void SettleDown(Adapter& adapter, HX_U16 id) {
    const bool stands_in = std::ranges::any_of(adapter.homes, [&](const Home& each) {
        return each.disk == id && each.home != id && each.home != kNoId;
    });
    Disk* const disk = Find(adapter.disks, id);
    if (disk == nullptr || stands_in) return;
    disk->spare_before = Spare::kNone;
    disk->spare_group_before = kNoId;
}

void SwapIn(Adapter& adapter, HX_U16 virtual_disk) {
    for (bool found = true; found;) {
        const auto target = std::ranges::find_if(adapter.blocks, [&](const Block& block) {
            return block.virtual_disk == virtual_disk && block.target;
        });
        found = target != adapter.blocks.end();
        if (!found) break;
        const HX_U16 id = target->id;
        if (const Block* const old = BlockOf(adapter, virtual_disk, target->position)) {
            Release(adapter, old->id);
        }
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

// The virtual disks that a copyback moves.
std::vector<HX_U16> Concerned(const Adapter& adapter, const Activity& copyback) {
    if (copyback.of == Owner::kVirtualDisk) return {copyback.owner};
    std::vector<HX_U16> ids;
    for (const VirtualDisk* const each : MembersOf(adapter, copyback.owner)) {
        ids.push_back(each->id);
    }
    return ids;
}

// Whether the array of the position is optimal and needs more sectors than its returned home disk
// has.
bool IsTooLargeFor(const Adapter& adapter, const Home& home, const Disk& disk) {
    if (home.of == Owner::kVirtualDisk) {
        const VirtualDisk* const row = Find(adapter.virtual_disks, home.owner);
        return row != nullptr && StateOf(adapter, *row) == State::kOptimal &&
               SectorsNeeded(adapter, *row) > UsableSectors(disk);
    }
    const DiskGroup* const group = Find(adapter.disk_groups, home.owner);
    return group != nullptr && StateOf(adapter, *group) == State::kOptimal &&
           SectorsNeeded(adapter, *group) > UsableSectors(disk);
}

bool MayCopyBack(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    return StateOf(adapter, virtual_disk) == State::kOptimal && !IsBusy(adapter, virtual_disk);
}

bool StartCopyback(Adapter& adapter, Time now, const VirtualDisk& virtual_disk) {
    if (virtual_disk.group != kNoId || !MayCopyBack(adapter, virtual_disk)) return false;
    Activity copyback;
    copyback.kind = ActivityKind::kCopyback;
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
        StateOf(adapter, group) == State::kOptimal && !IsBusy(adapter, group) &&
        std::ranges::all_of(members, [&](const auto* each) { return MayCopyBack(adapter, *each); });
    if (!may) return false;
    Activity copyback;
    copyback.kind = ActivityKind::kCopyback;
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

// Whether the disk sits in the bay of a member that is lost, and has no room for its content.
bool ReplacesLostMember(const Adapter& adapter, const Disk& disk) {
    return std::ranges::any_of(adapter.virtual_disks, [&](const VirtualDisk& each) {
        if (!IsRedundant(each.level) || SectorsNeeded(adapter, each) <= UsableSectors(disk)) {
            return false;
        }
        for (unsigned i = 0; i < each.width; ++i) {
            const auto position = static_cast<HX_U8>(i);
            const Home* const home = HomeOf(adapter, each, position);
            if (home != nullptr && home->home == disk.id &&
                BlockOf(adapter, each.id, position) == nullptr) {
                return true;
            }
        }
        return false;
    });
}

}  // namespace

void TellOfSmallHome(Adapter& adapter, Time now, HX_U16 id) {
    const Disk* const disk = Find(adapter.disks, id);
    if (disk == nullptr || !IsReady(*disk)) return;
    if (ReplacesLostMember(adapter, *disk)) {
        Queue(adapter, now, EventKind::kDiskTooSmallForCopyback, id, {1});
        return;
    }
    if (adapter.config.CopyBack == 0) return;
    const bool too_small = std::ranges::any_of(adapter.homes, [&](const Home& home) {
        return home.home == id && IsDisplaced(home) && IsTooLargeFor(adapter, home, *disk);
    });
    if (too_small) Queue(adapter, now, EventKind::kDiskTooSmallForCopyback, id);
}

bool StartCopybacks(Settling& settling) {
    Adapter& adapter = settling.adapter;
    if (adapter.config.CopyBack == 0) return false;
    bool changed = false;
    for (const DiskGroup& group : adapter.disk_groups) {
        changed = StartCopyback(adapter, settling.now, group) || changed;
    }
    for (const VirtualDisk& each : adapter.virtual_disks) {
        changed = StartCopyback(adapter, settling.now, each) || changed;
    }
    return changed;
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

void BelongThere(Adapter& adapter, Home& home) {
    if (home.disk == kNoId) return;
    home.home = home.disk;
    SettleDown(adapter, home.disk);
}

}  // namespace hxsim
