// Whether a disk can serve a position of a virtual disk or of a disk group.
#include "model/hxsim_disk_fit.h"

#include <algorithm>

#include "model/hxsim_disk_role.h"
#include "model/hxsim_members.h"
#include "model/hxsim_space.h"

namespace hxsim {
namespace {

template <class Array>
const Disk* HomeDiskOf(const Adapter& adapter, const Array& array, HX_U16 id) {
    const Disk* const disk = Find(adapter.disks, id);
    const bool serves = disk != nullptr && disk->spare == Spare::kNone &&
                        CanServe(adapter, array, *disk) == Status::kSuccess;
    return serves ? disk : nullptr;
}

}  // namespace

bool NeedsDisk(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position) {
    const Block* const block = BlockOf(adapter, virtual_disk.id, position);
    return block == nullptr || !IsReady(adapter, block->disk);
}

bool NeedsDisk(const Adapter& adapter, const Home& home) { return !IsReady(adapter, home.disk); }

Sectors SectorsNeeded(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const Block* const block = AnyBlockOf(adapter, virtual_disk.id);
    return block == nullptr ? 0 : block->sectors;
}

Sectors SectorsNeeded(const Adapter& adapter, const DiskGroup& group) {
    // The usable size of the smallest disk, so that the group does not shrink, and at least the end
    // of the last block of its virtual disks.
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

Status CanServe(const Adapter& adapter, const VirtualDisk& virtual_disk, const Disk& disk) {
    if (!IsReady(disk)) return Status::kDiskNotReady;
    if (disk.spare == Spare::kGroup || GroupOf(adapter, disk.id) != nullptr) {
        return Status::kDiskTaken;
    }
    const bool in_use = std::ranges::any_of(adapter.blocks, [&](const Block& block) {
        return block.disk == disk.id && block.virtual_disk == virtual_disk.id;
    });
    if (in_use) return Status::kDiskInUse;
    const Sectors sectors = SectorsNeeded(adapter, virtual_disk);
    const Block* const free = FirstFree(adapter, disk.id, sectors);
    if (free == nullptr || sectors == 0) return Status::kNoSpace;
    const bool one_more = free->sectors != sectors;
    return one_more && IsFullOfBlocks(adapter, disk.id) ? Status::kTooManyBlocks : Status::kSuccess;
}

Status CanServe(const Adapter& adapter, const DiskGroup& group, const Disk& disk) {
    if (!IsReady(disk)) return Status::kDiskNotReady;
    if (disk.spare == Spare::kGroup && disk.spare_group != group.id) return Status::kDiskTaken;
    if (IsConfigured(adapter, disk.id)) return Status::kDiskTaken;
    return UsableSectors(disk) < SectorsNeeded(adapter, group) ? Status::kNoSpace
                                                               : Status::kSuccess;
}

const Disk* FindHomeDisk(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U16 id) {
    return HomeDiskOf(adapter, virtual_disk, id);
}

const Disk* FindHomeDisk(const Adapter& adapter, const DiskGroup& group, HX_U16 id) {
    return HomeDiskOf(adapter, group, id);
}

}  // namespace hxsim
