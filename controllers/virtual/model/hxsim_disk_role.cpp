// The roles of disks, from the rows of blocks, homes and spares.
#include "model/hxsim_disk_role.h"

#include <algorithm>
#include <utility>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_space.h"

namespace hxsim {
namespace {

HX_U8 StatusOf(const Disk& disk) {
    HX_U8 status = 0;
    if (Answers(disk)) status |= DiskBit::kOnline;
    if (disk.present && disk.failed) status |= DiskBit::kFailed;
    if (disk.present && disk.foreign) status |= DiskBit::kForeign;
    if (!IsReady(disk)) status |= DiskBit::kUnavailable;
    if (disk.spare == Spare::kGlobal) status |= DiskBit::kGlobalSpare;
    if (disk.spare == Spare::kGroup) status |= DiskBit::kGroupSpare;
    return status;
}

bool IsCopiedBack(const Adapter& adapter, HX_U16 virtual_disk) {
    const VirtualDisk* const row = Find(adapter.virtual_disks, virtual_disk);
    if (row == nullptr) return false;
    const auto runs_on = [&](Owner of, HX_U16 owner) {
        return IsKind(ActivityOf(adapter, of, owner), ActivityKind::kCopyback);
    };
    return runs_on(Owner::kVirtualDisk, row->id) ||
           (row->group != kNoId && runs_on(Owner::kDiskGroup, row->group));
}

}  // namespace

DiskRoles::DiskRoles(const Adapter& adapter) : adapter_(adapter), roles_(adapter.disks.size()) {
    const auto role_of = [&](HX_U16 id) -> DiskRole* {
        const Disk* const disk = Find(adapter.disks, id);
        return disk == nullptr ? nullptr
                               : &roles_[static_cast<std::size_t>(disk - adapter.disks.data())];
    };
    for (std::size_t place = 0; place < roles_.size(); ++place) {
        const Disk& disk = adapter.disks[place];
        roles_[place].status = StatusOf(disk);
        if (disk.spare == Spare::kGroup) roles_[place].serves = disk.spare_group;
    }
    for (const Home& home : adapter.homes) {
        DiskRole* const role = home.of == Owner::kDiskGroup ? role_of(home.disk) : nullptr;
        if (role == nullptr) continue;
        role->status |= DiskBit::kConfigured;
        role->serves = home.owner;
        role->of_group = true;
    }
    for (const Block& block : adapter.blocks) {
        DiskRole* const role = role_of(block.disk);
        if (role == nullptr) continue;
        if (block.virtual_disk == kNoVirtualDisk) {
            role->free += block.sectors;
            continue;
        }
        role->status |= DiskBit::kConfigured;
        if (!role->of_group) role->serves = std::min(role->serves, block.virtual_disk);
        if (block.state == State::kRebuilding ||
            (block.target && IsCopiedBack(adapter, block.virtual_disk))) {
            role->status |= DiskBit::kRebuilding;
        }
    }
    constexpr HX_U8 kReserved =
        DiskBit::kUnavailable | DiskBit::kGlobalSpare | DiskBit::kGroupSpare;
    for (DiskRole& role : roles_) {
        if (role.of_group || (role.status & kReserved) != 0) role.free = 0;
    }
}

const DiskRole& DiskRoles::Of(const Disk& disk) const {
    return roles_[static_cast<std::size_t>(&disk - adapter_.disks.data())];
}

bool IsListed(const Disk& disk, const DiskRole& role) {
    return disk.present || (role.status & DiskBit::kConfigured) != 0;
}

const Disk* FindListed(const Adapter& adapter, HX_U16 id) {
    const Disk* const disk = Find(adapter.disks, id);
    if (disk == nullptr) return nullptr;
    return disk->present || IsConfigured(adapter, id) ? disk : nullptr;
}

Disk* FindListed(Adapter& adapter, HX_U16 id) {
    return FindListed(std::as_const(adapter), id) == nullptr ? nullptr : Find(adapter.disks, id);
}

const DiskGroup* GroupOf(const Adapter& adapter, HX_U16 disk) {
    for (const Home& home : adapter.homes) {
        if (home.of == Owner::kDiskGroup && home.disk == disk) {
            return Find(adapter.disk_groups, home.owner);
        }
    }
    // A migration or copyback of the group may be writing this disk already.
    for (const Block& block : adapter.blocks) {
        if (block.disk != disk || block.virtual_disk == kNoVirtualDisk) continue;
        const VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, block.virtual_disk);
        if (virtual_disk == nullptr || virtual_disk->group == kNoId) continue;
        return Find(adapter.disk_groups, virtual_disk->group);
    }
    return nullptr;
}

bool IsConfigured(const Adapter& adapter, HX_U16 disk) {
    return GroupOf(adapter, disk) != nullptr || CarriesBlocks(adapter, disk);
}

bool IsFree(const Adapter& adapter, const Disk& disk) {
    return IsReady(disk) && disk.spare == Spare::kNone && !IsConfigured(adapter, disk.id);
}

}  // namespace hxsim
