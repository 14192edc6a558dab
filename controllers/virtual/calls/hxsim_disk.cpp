// The disks: what they are, how they are set and what they are used for.
#include "calls/hxsim_disk.h"

#include <algorithm>
#include <span>

#include "calls/hxsim_session.h"
#include "model/hxsim_link.h"
#include "model/hxsim_redundancy.h"
#include "model/hxsim_space.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_activity.h"

namespace hxsim {
namespace {

HX_U8 StatusOf(const Disk& disk) {
    HX_U8 status = 0;
    if (Answers(disk)) status |= HXSIM_DISK_ONLINE;
    if (disk.present && disk.failed) status |= HXSIM_DISK_FAILED;
    if (disk.present && disk.foreign) status |= HXSIM_DISK_FOREIGN;
    if (!IsReady(disk)) status |= HXSIM_DISK_UNAVAILABLE;
    if (disk.spare == Spare::kGlobal) status |= HXSIM_DISK_GLOBAL_SPARE;
    if (disk.spare == Spare::kGroup) status |= HXSIM_DISK_GROUP_SPARE;
    return status;
}

bool IsKind(const Activity* activity, HX_U8 kind) {
    return activity != nullptr && activity->kind == kind;
}

bool IsCopiedBack(const Adapter& adapter, HX_U16 virtual_disk) {
    const VirtualDisk* const row = Find(adapter.virtual_disks, virtual_disk);
    if (row == nullptr) return false;
    const auto runs_on = [&](Owner of, HX_U16 owner) {
        return IsKind(ActivityOf(adapter, of, owner), HXSIM_ACTIVITY_COPYBACK);
    };
    return runs_on(Owner::kVirtualDisk, row->id) ||
           (row->group != kNoId && runs_on(Owner::kDiskGroup, row->group));
}

void DescribeDisk(const Adapter& adapter, const Disk& disk, const Part& part, Time, HD_Info& info) {
    info.Link = LinkOf(adapter, disk);
    info.AdapterID = adapter.id;
    info.Status = part.status;
    info.HDType = disk.sas ? HXSIM_TYPE_SAS : HXSIM_TYPE_SATA;
    info.ConnectionType = disk.sas ? HXSIM_CONNECTION_SAS : HXSIM_CONNECTION_SATA;
    if (!disk.sas) {
        info.PIOMode = info.CurrentPIOMode = 4;
        info.MDMAMode = info.CurrentMDMAMode = 2;
        info.UDMAMode = info.CurrentUDMAMode = 6;
    }
    info.FeatureSupport = HXSIM_FEATURE_SMART | HXSIM_FEATURE_WRITE_CACHE | HXSIM_FEATURE_QUEUEING;
    SetPaddedText(info.Model, disk.model);
    SetPaddedText(info.SerialNo, disk.serial);
    SetPaddedText(info.FWVersion, disk.firmware);
    SetWorldWideName(info.WWN, disk.wwn);
    info.Size.value = disk.sectors;
    info.ActivityLEDStatus = Answers(disk);
    info.LocateLEDStatus = disk.locate_light;
    info.ErrorLEDStatus = disk.failed;
}

void DescribeFreeSpace(const Adapter& adapter, const Disk& disk, const Part& part, Time,
                       HD_FreeSpaceInfo& space) {
    space.ID = disk.id;
    space.AdapterID = adapter.id;
    space.isFixed = 1;
    space.Size.value = part.free;
}

void DescribeSettings(const Adapter&, const Disk& disk, const Part&, Time, HD_Config& config) {
    config.WriteCacheOn = disk.write_cache;
    config.SMARTOn = disk.smart_on;
    config.Online = Answers(disk) && !disk.offline;
    config.DriveSpeed = disk.speed;
    config.HDID = disk.id;
}

void DescribeActivity(const Adapter& adapter, const Disk& disk, const Part& part, Time now,
                      HD_BGA_Status& status) {
    status.HDID = disk.id;
    status.Status = part.status;
    const Activity* const activity = ActivityOf(adapter, Owner::kDisk, disk.id);
    if (activity == nullptr) return;
    status.Percentage = Percentage(*activity, now);
    status.Bga = activity->kind;
    status.BgaStatus = activity->state;
}

void DescribeSmart(const Adapter&, const Disk& disk, const Part&, Time, HD_SMART_Status& smart) {
    // What nobody measures is not known to be over its threshold.
    smart.SmartThresholdExceeded = disk.smart_on && disk.smart_exceeded;
    smart.HDID = disk.id;
}

void DescribePart(const Adapter&, const Disk& disk, const Part& part, Time,
                  HD_RAID_Status& status) {
    status.HDID = disk.id;
    status.DGID = part.serves;
    status.Status = part.status;
}

std::vector<RCT_Record> RemapTable(const Adapter& adapter, HX_U16 disk) {
    std::vector<RCT_Record> table;
    for (const Remap& remap : adapter.remaps) {
        if (remap.disk != disk || remap.reason == kNotRemapped) continue;
        RCT_Record& record = table.emplace_back();
        record.lba.value = remap.lba;
        record.sec = remap.sectors;
        record.flag = remap.reason;
    }
    return table;
}

void FailWhatWrites(Adapter& adapter, Time now, Owner of, HX_U16 owner, bool target) {
    const Activity* const activity = ActivityOf(adapter, of, owner);
    if (IsKind(activity, target ? HXSIM_ACTIVITY_COPYBACK : HXSIM_ACTIVITY_REBUILD)) {
        Fail(adapter, now, activity->id);
    }
    const Activity* const migration = MigrationOf(adapter, of, owner);
    if (target && migration != nullptr) Fail(adapter, now, migration->id);
}

// A rebuild, copyback or migration whose blocks go away under it cannot go on.
void EndWritesTo(Adapter& adapter, Time now, HX_U16 disk) {
    std::vector<Block> written;
    for (const Block& block : adapter.blocks) {
        const bool is_written = block.target || block.state == HXSIM_STATE_REBUILDING;
        if (block.disk == disk && is_written) written.push_back(block);
    }
    for (const Block& block : written) {
        FailWhatWrites(adapter, now, Owner::kVirtualDisk, block.virtual_disk, block.target);
        const VirtualDisk* const virtual_disk = Find(adapter.virtual_disks, block.virtual_disk);
        if (virtual_disk == nullptr || virtual_disk->group == kNoId) continue;
        FailWhatWrites(adapter, now, Owner::kDiskGroup, virtual_disk->group, block.target);
    }
}

HX_U8 CountRemaps(const Adapter& adapter, HX_U16 disk, HX_U32* count) {
    if (count == nullptr) return HXSIM_NULL_ADDRESS;
    if (FindListed(adapter, disk) == nullptr) return HXSIM_NO_DISK;
    *count = static_cast<HX_U32>(RemapTable(adapter, disk).size());
    if (IsHostile()) SpoilRecord(count, sizeof *count);
    return HX_SUCCESS;
}

HX_U8 CopyRemaps(const Adapter& adapter, HX_U16 disk, RCT_Record* records, HX_U32 count) {
    if (records == nullptr && count != 0) return HXSIM_NULL_ADDRESS;
    if (FindListed(adapter, disk) == nullptr) return HXSIM_NO_DISK;
    const std::vector<RCT_Record> table = RemapTable(adapter, disk);
    if (count > table.size()) return HXSIM_BAD_COUNT;
    std::copy_n(table.begin(), count, records);
    if (IsHostile() && count != 0) SpoilRecord(records, count * sizeof *records);
    return HX_SUCCESS;
}

HX_U8 Locate(Adapter& adapter, HX_U8 kind, HX_U16 id, HX_U8 light) {
    if (kind != HXSIM_DEVICE_DISK) return HXSIM_NO_LIGHT;
    Disk* const disk = FindListed(adapter, id);
    if (disk == nullptr) return HXSIM_NO_DISK;
    if (light > 1) return HXSIM_BAD_ACTION;
    disk->locate_light = light != 0;
    return HX_SUCCESS;
}

HX_U8 FindBootRecords(const Adapter& adapter, HD_MBR_Info* info) {
    if (info == nullptr) return HXSIM_NULL_ADDRESS;
    if (info->HDCount > HX_MAX_HDS) return HXSIM_BAD_COUNT;
    const std::span asked(info->HDIDs, info->HDCount);
    const auto is_missing = [&](HX_U16 id) { return FindListed(adapter, id) == nullptr; };
    if (std::ranges::any_of(asked, is_missing)) return HXSIM_NO_DISK;
    std::ranges::transform(asked, info->hasMBR, [&](HX_U16 id) {
        const Disk& disk = *Find(adapter.disks, id);
        return HX_BOOLEAN{Answers(disk) && disk.has_mbr};
    });
    return HX_SUCCESS;
}

HX_U8 FindSystem(const Adapter& adapter, HX_U8 kind, HX_U8 count, const HX_U16* ids) {
    if (ids == nullptr && count != 0) return HXSIM_NULL_ADDRESS;
    if (kind != 1) return HXSIM_BAD_ACTION;
    for (const HX_U16 id : std::span(ids, count)) {
        const Disk* const disk = FindListed(adapter, id);
        if (disk == nullptr) return HXSIM_NO_DISK;
        if (Answers(*disk) && disk->has_system) return HXSIM_HOLDS_SYSTEM;
    }
    return HX_SUCCESS;
}

void DropForeign(Adapter& adapter, HX_U16 virtual_disk) {
    std::erase_if(adapter.homes, [&](const Home& home) {
        return home.of == Owner::kVirtualDisk && home.owner == virtual_disk;
    });
    std::erase_if(adapter.virtual_disks,
                  [&](const VirtualDisk& each) { return each.id == virtual_disk; });
}

}  // namespace

// ---- Parts ----

Parts::Parts(const Adapter& adapter) : adapter_(adapter), parts_(adapter.disks.size()) {
    const auto part_of = [&](HX_U16 id) -> Part* {
        const Disk* const disk = Find(adapter.disks, id);
        return disk == nullptr ? nullptr
                               : &parts_[static_cast<std::size_t>(disk - adapter.disks.data())];
    };
    for (std::size_t place = 0; place < parts_.size(); ++place) {
        const Disk& disk = adapter.disks[place];
        parts_[place].status = StatusOf(disk);
        if (disk.spare == Spare::kGroup) parts_[place].serves = disk.spare_group;
    }
    for (const Home& home : adapter.homes) {
        Part* const part = home.of == Owner::kDiskGroup ? part_of(home.disk) : nullptr;
        if (part == nullptr) continue;
        part->status |= HXSIM_DISK_CONFIGURED;
        part->serves = home.owner;
        part->of_group = true;
    }
    for (const Block& block : adapter.blocks) {
        Part* const part = part_of(block.disk);
        if (part == nullptr) continue;
        if (block.virtual_disk == kNoVirtualDisk) {
            part->free += block.sectors;
            continue;
        }
        part->status |= HXSIM_DISK_CONFIGURED;
        if (!part->of_group) part->serves = std::min(part->serves, block.virtual_disk);
        if (block.state == HXSIM_STATE_REBUILDING ||
            (block.target && IsCopiedBack(adapter, block.virtual_disk))) {
            part->status |= HXSIM_DISK_REBUILDING;
        }
    }
    constexpr HX_U8 kReserved =
        HXSIM_DISK_UNAVAILABLE | HXSIM_DISK_GLOBAL_SPARE | HXSIM_DISK_GROUP_SPARE;
    for (Part& part : parts_) {
        if (part.of_group || (part.status & kReserved) != 0) part.free = 0;
    }
}

const Part& Parts::Of(const Disk& disk) const {
    return parts_[static_cast<std::size_t>(&disk - adapter_.disks.data())];
}

bool IsListed(const Disk& disk, const Part& part) {
    return disk.present || (part.status & HXSIM_DISK_CONFIGURED) != 0;
}

const Disk* FindListed(const Adapter& adapter, HX_U16 id) {
    const Disk* const disk = Find(adapter.disks, id);
    if (disk == nullptr) return nullptr;
    return disk->present || IsConfigured(adapter, id) ? disk : nullptr;
}

Disk* FindListed(Adapter& adapter, HX_U16 id) {
    const Adapter& read_only = adapter;
    return FindListed(read_only, id) == nullptr ? nullptr : Find(adapter.disks, id);
}

void DropContents(Adapter& adapter, Time now, HX_U16 disk) {
    EndWritesTo(adapter, now, disk);
    ResetDisk(adapter, disk);
    for (Home& home : adapter.homes) {
        if (home.disk == disk) home.disk = kNoId;
    }
    std::vector<HX_U16> gone;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (!each.foreign) continue;
        const auto is_left = [&](const Block& block) { return block.virtual_disk == each.id; };
        if (std::ranges::none_of(adapter.blocks, is_left)) gone.push_back(each.id);
    }
    for (const HX_U16 virtual_disk : gone) DropForeign(adapter, virtual_disk);
}

}  // namespace hxsim

// ---- Lists ----

HX_U8 HX_PD_GetHDInfo(HX_U8 AdapterID, HD_Info_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_Info_Request::hdInfo,
                            hxsim::DescribeDisk);
}

// What the plain call cannot number, no adapter here has.
HX_U8 HX_PD_GetHDInfo_Ext(HX_U8 AdapterID, HD_Info_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_Info_Request::hdInfo,
                            hxsim::DescribeDisk);
}

HX_U8 HX_PD_GetFreeSpaceInfo(HX_U8 AdapterID, HD_FreeSpaceInfo_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request,
                            &HD_FreeSpaceInfo_Request::hdFreeSpaceInfo, hxsim::DescribeFreeSpace);
}

HX_U8 HX_PD_GetConfig(HX_U8 AdapterID, HD_Config_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_Config_Request::hdConfig,
                            hxsim::DescribeSettings);
}

HX_U8 HX_PD_GetBGAStatus(HX_U8 AdapterID, HD_BGA_Status_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_BGA_Status_Request::hdBgaStatus,
                            hxsim::DescribeActivity);
}

HX_U8 HX_PD_GetSmartStatus(HX_U8 AdapterID, HD_SMART_Status_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_SMART_Status_Request::hdSmartStatus,
                            hxsim::DescribeSmart);
}

HX_U8 HX_PD_GetHDRaidStatus(HX_U8 AdapterID, HD_RAID_Status_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_RAID_Status_Request::hdRaidStatus,
                            hxsim::DescribePart);
}

// ---- One disk ----

HX_U8 HX_PD_RCT_GetCount(HX_U8 AdapterID, HX_U16 HD_ID, HX_U32* count) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::CountRemaps(adapter, HD_ID, count);
    });
}

HX_U8 HX_PD_GetRCT(HX_U8 AdapterID, HX_U16 HD_ID, RCT_Record* records, HX_U32 count) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::CopyRemaps(adapter, HD_ID, records, count);
    });
}

HX_U8 HX_LocateArrayDevice(HX_U8 AdapterID, HX_U8 deviceType, HX_U16 deviceId, HX_U8 ledStatus) {
    return hxsim::Change(__func__, AdapterID, [&](hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::Locate(adapter, deviceType, deviceId, ledStatus);
    });
}

// ---- Several disks ----

HX_U8 HX_PD_GetMBRInfo(HX_U8 AdapterID, HD_MBR_Info* info) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::FindBootRecords(adapter, info);
    });
}

HX_U8 HX_DiskHasOS(HX_U8 AdapterID, HX_U8 kind, HX_U8 count, const HX_U16* HDIDs) {
    return hxsim::Look(__func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) {
        return hxsim::FindSystem(adapter, kind, count, HDIDs);
    });
}
