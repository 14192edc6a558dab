// The disks: what they are, how they are set and what they are used for.
#include "hxsim_disk.h"

#include <algorithm>
#include <span>

#include "hxsim_adapter.h"
#include "hxsim_capacity.h"
#include "hxraid_codes.h"
#include "hxsim_library.h"
#include "hxsim_link.h"
#include "hxsim_machine.h"
#include "hxsim_page.h"
#include "hxsim_text.h"

namespace hxsim {
namespace {

// The one thing that a call can change: which locate lights are on, by the disk's place in its
// list.
constinit HX_BOOLEAN located[kAdapterCount][kMostDisks] = {};

HX_BOOLEAN& LocateLight(HX_U8 adapter, const Disk& disk) {
    return located[adapter][&disk - MachineOf(adapter).disks.data()];
}

void DescribeDisk(HX_U8 adapter, const Disk& disk, HD_Info& info) {
    const DiskModel& model = *disk.model;
    info.Link = LinkOf(adapter, disk);
    info.AdapterID = adapter;
    info.Status = PartOf(adapter, disk).status;
    info.HDType = model.sas ? HXSIM_TYPE_SAS : HXSIM_TYPE_SATA;
    info.ConnectionType = model.sas ? HXSIM_CONNECTION_SAS : HXSIM_CONNECTION_SATA;
    if (!model.sas) {
        info.PIOMode = info.CurrentPIOMode = 4;
        info.MDMAMode = info.CurrentMDMAMode = 2;
        info.UDMAMode = info.CurrentUDMAMode = 6;
    }
    info.FeatureSupport = HXSIM_FEATURE_SMART | HXSIM_FEATURE_WRITE_CACHE | HXSIM_FEATURE_QUEUEING;
    SetPaddedText(info.Model, model.name);
    SetPaddedText(info.SerialNo, disk.serial);
    SetPaddedText(info.FWVersion, model.firmware);
    SetWorldWideName(info.WWN, HXSIM_DEVICE_DISK, adapter, disk.id, 0);
    info.Size.value = model.sectors;
    info.ActivityLEDStatus = 1;
    info.LocateLEDStatus = LocateLight(adapter, disk);
}

void DescribeFreeSpace(HX_U8 adapter, const Disk& disk, HD_FreeSpaceInfo& space) {
    space.ID = disk.id;
    space.AdapterID = adapter;
    space.isFixed = 1;
    space.Size.value = FreeSectors(adapter, disk);
}

void DescribeSettings(HX_U8 adapter, const Disk& disk, HD_Config& config) {
    // Not where the disk's own cache could lose what the controller has promised to have written.
    config.WriteCacheOn = (PartOf(adapter, disk).status & HXSIM_DISK_CONFIGURED) == 0;
    config.SMARTOn = 1;
    config.Online = 1;
    config.DriveSpeed = disk.model->speed;
    config.HDID = disk.id;
}

void DescribeActivity(HX_U8 adapter, const Disk& disk, HD_BGA_Status& activity) {
    activity.HDID = disk.id;
    activity.Status = PartOf(adapter, disk).status;
}

void DescribeSmart(HX_U8, const Disk& disk, HD_SMART_Status& smart) { smart.HDID = disk.id; }

void DescribePart(HX_U8 adapter, const Disk& disk, HD_RAID_Status& status) {
    const Part part = PartOf(adapter, disk);
    status.HDID = disk.id;
    status.DGID = part.serves;
    status.Status = part.status;
}

}  // namespace

Part PartOf(HX_U8 adapter, const Disk& disk) {
    const Machine& machine = MachineOf(adapter);
    for (const DiskGroup& group : machine.disk_groups) {
        if (Contains(group.disks, disk.id)) {
            return {HXSIM_DISK_ONLINE | HXSIM_DISK_CONFIGURED, group.id, &group};
        }
        if (Contains(group.spares, disk.id)) {
            return {HXSIM_DISK_ONLINE | HXSIM_DISK_GROUP_SPARE, group.id, nullptr};
        }
    }
    for (const VirtualDisk& virtual_disk : machine.virtual_disks) {
        if (Contains(virtual_disk.disks, disk.id)) {
            return {HXSIM_DISK_ONLINE | HXSIM_DISK_CONFIGURED, virtual_disk.id, nullptr};
        }
    }
    if (disk.global_spare) return {HXSIM_DISK_ONLINE | HXSIM_DISK_GLOBAL_SPARE, kNoId, nullptr};
    return {HXSIM_DISK_ONLINE, kNoId, nullptr};
}

}  // namespace hxsim

// ---- Lists ----

HX_U8 HX_PD_GetHDInfo(HX_U8 AdapterID, HD_Info_Request* request) {
    return hxsim::List(AdapterID, request, &HD_Info_Request::hdInfo, hxsim::kDisks,
                       hxsim::DescribeDisk);
}

// What the plain call cannot number, no adapter here has.
HX_U8 HX_PD_GetHDInfo_Ext(HX_U8 AdapterID, HD_Info_Request* request) {
    return HX_PD_GetHDInfo(AdapterID, request);
}

HX_U8 HX_PD_GetFreeSpaceInfo(HX_U8 AdapterID, HD_FreeSpaceInfo_Request* request) {
    return hxsim::List(AdapterID, request, &HD_FreeSpaceInfo_Request::hdFreeSpaceInfo,
                       hxsim::kDisks, hxsim::DescribeFreeSpace);
}

HX_U8 HX_PD_GetConfig(HX_U8 AdapterID, HD_Config_Request* request) {
    return hxsim::List(AdapterID, request, &HD_Config_Request::hdConfig, hxsim::kDisks,
                       hxsim::DescribeSettings);
}

HX_U8 HX_PD_GetBGAStatus(HX_U8 AdapterID, HD_BGA_Status_Request* request) {
    return hxsim::List(AdapterID, request, &HD_BGA_Status_Request::hdBgaStatus, hxsim::kDisks,
                       hxsim::DescribeActivity);
}

HX_U8 HX_PD_GetSmartStatus(HX_U8 AdapterID, HD_SMART_Status_Request* request) {
    return hxsim::List(AdapterID, request, &HD_SMART_Status_Request::hdSmartStatus, hxsim::kDisks,
                       hxsim::DescribeSmart);
}

HX_U8 HX_PD_GetHDRaidStatus(HX_U8 AdapterID, HD_RAID_Status_Request* request) {
    return hxsim::List(AdapterID, request, &HD_RAID_Status_Request::hdRaidStatus, hxsim::kDisks,
                       hxsim::DescribePart);
}

// ---- One disk ----

HX_U8 HX_PD_RCT_GetCount(HX_U8 AdapterID, HX_U16 HD_ID, HX_U32* count) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (count == nullptr) return HXSIM_NULL_ADDRESS;
    const hxsim::Disk* const disk = hxsim::Find(AdapterID, hxsim::kDisks, HD_ID);
    if (disk == nullptr) return HXSIM_NO_DISK;
    *count = static_cast<HX_U32>(disk->remapped.size());
    return HX_SUCCESS;
}

HX_U8 HX_PD_GetRCT(HX_U8 AdapterID, HX_U16 HD_ID, RCT_Record* records, HX_U32 count) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (records == nullptr && count != 0) return HXSIM_NULL_ADDRESS;
    const hxsim::Disk* const disk = hxsim::Find(AdapterID, hxsim::kDisks, HD_ID);
    if (disk == nullptr) return HXSIM_NO_DISK;
    if (count > disk->remapped.size()) return HXSIM_BAD_COUNT;
    std::ranges::copy(disk->remapped.first(count), records);
    return HX_SUCCESS;
}

HX_U8 HX_LocateArrayDevice(HX_U8 AdapterID, HX_U8 deviceType, HX_U16 deviceId, HX_U8 ledStatus) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (deviceType != HXSIM_DEVICE_DISK) return HXSIM_NO_LIGHT;
    const hxsim::Disk* const disk = hxsim::Find(AdapterID, hxsim::kDisks, deviceId);
    if (disk == nullptr) return HXSIM_NO_DISK;
    if (ledStatus > 1) return HXSIM_BAD_ACTION;
    hxsim::LocateLight(AdapterID, *disk) = ledStatus;
    return HX_SUCCESS;
}

// ---- Several disks ----

HX_U8 HX_PD_GetMBRInfo(HX_U8 AdapterID, HD_MBR_Info* info) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (info == nullptr) return HXSIM_NULL_ADDRESS;
    if (info->HDCount > HX_MAX_HDS) return HXSIM_BAD_COUNT;
    const std::span asked(info->HDIDs, info->HDCount);
    const auto is_missing = [&](HX_U16 id) {
        return hxsim::Find(AdapterID, hxsim::kDisks, id) == nullptr;
    };
    if (std::ranges::any_of(asked, is_missing)) return HXSIM_NO_DISK;
    std::ranges::transform(asked, info->hasMBR, [&](HX_U16 id) {
        return HX_BOOLEAN{hxsim::Find(AdapterID, hxsim::kDisks, id)->has_mbr};
    });
    return HX_SUCCESS;
}

HX_U8 HX_DiskHasOS(HX_U8 AdapterID, HX_U8 kind, HX_U8 count, const HX_U16* HDIDs) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (HDIDs == nullptr && count != 0) return HXSIM_NULL_ADDRESS;
    if (kind != 1) return HXSIM_BAD_ACTION;
    for (const HX_U16 id : std::span(HDIDs, count)) {
        const hxsim::Disk* const disk = hxsim::Find(AdapterID, hxsim::kDisks, id);
        if (disk == nullptr) return HXSIM_NO_DISK;
        if (disk->has_system) return HXSIM_HOLDS_SYSTEM;
    }
    return HX_SUCCESS;
}
