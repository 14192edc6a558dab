// Lists of disks, and their lights.
#include "calls/hxsim_disk_list.h"

#include <algorithm>
#include <span>
#include <vector>

#include "calls/hxsim_session.h"

namespace hxsim {
namespace {

std::vector<RCT_Record> RemapTable(const Adapter& adapter, HX_U16 disk) {
    std::vector<RCT_Record> table;
    for (const Remap& remap : adapter.remaps) {
        if (remap.disk != disk || remap.reason == kNotRemapped) continue;
        Describe(remap, table.emplace_back());
    }
    return table;
}

Status CountRemaps(const Adapter& adapter, HX_U16 disk, HX_U32* count) {
    if (count == nullptr) return Status::kNullAddress;
    if (FindListed(adapter, disk) == nullptr) return Status::kNoDisk;
    *count = static_cast<HX_U32>(RemapTable(adapter, disk).size());
    if (IsHostile()) MakeRecordHostile(count, sizeof *count);
    return Status::kSuccess;
}

Status CopyRemaps(const Adapter& adapter, HX_U16 disk, RCT_Record* records, HX_U32 count) {
    if (records == nullptr && count != 0) return Status::kNullAddress;
    if (FindListed(adapter, disk) == nullptr) return Status::kNoDisk;
    const std::vector<RCT_Record> table = RemapTable(adapter, disk);
    if (count > table.size()) return Status::kBadCount;
    std::copy_n(table.begin(), count, records);
    if (IsHostile() && count != 0) MakeRecordHostile(records, count * sizeof *records);
    return Status::kSuccess;
}

Status Locate(Adapter& adapter, HX_U8 kind, HX_U16 id, HX_U8 light) {
    if (kind != Device::kDisk) return Status::kNoLight;
    Disk* const disk = FindListed(adapter, id);
    if (disk == nullptr) return Status::kNoDisk;
    if (light > 1) return Status::kBadAction;
    disk->locate_light = light != 0;
    return Status::kSuccess;
}

Status FindBootRecords(const Adapter& adapter, HD_MBR_Info* info) {
    if (info == nullptr) return Status::kNullAddress;
    if (info->HDCount > HX_MAX_HDS) return Status::kBadCount;
    const std::span asked(info->HDIDs, info->HDCount);
    const auto is_missing = [&](HX_U16 id) { return FindListed(adapter, id) == nullptr; };
    if (std::ranges::any_of(asked, is_missing)) return Status::kNoDisk;
    std::ranges::transform(asked, info->hasMBR, [&](HX_U16 id) {
        const Disk& disk = *Find(adapter.disks, id);
        return HX_BOOLEAN{Answers(disk) && disk.has_mbr};
    });
    return Status::kSuccess;
}

Status FindSystem(const Adapter& adapter, HX_U8 kind, HX_U8 count, const HX_U16* ids) {
    if (ids == nullptr && count != 0) return Status::kNullAddress;
    if (kind != 1) return Status::kBadAction;
    for (const HX_U16 id : std::span(ids, count)) {
        const Disk* const disk = FindListed(adapter, id);
        if (disk == nullptr) return Status::kNoDisk;
        if (Answers(*disk) && disk->has_system) return Status::kHoldsSystem;
    }
    return Status::kSuccess;
}

}  // namespace
}  // namespace hxsim

// ---- Lists ----

HX_U8 HX_PD_GetHDInfo(HX_U8 AdapterID, HD_Info_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_Info_Request::hdInfo);
}

// Same as the plain call: no adapter here has disks that it cannot number.
HX_U8 HX_PD_GetHDInfo_Ext(HX_U8 AdapterID, HD_Info_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_Info_Request::hdInfo);
}

HX_U8 HX_PD_GetFreeSpaceInfo(HX_U8 AdapterID, HD_FreeSpaceInfo_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request,
                            &HD_FreeSpaceInfo_Request::hdFreeSpaceInfo);
}

HX_U8 HX_PD_GetConfig(HX_U8 AdapterID, HD_Config_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_Config_Request::hdConfig);
}

HX_U8 HX_PD_GetBGAStatus(HX_U8 AdapterID, HD_BGA_Status_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_BGA_Status_Request::hdBgaStatus);
}

HX_U8 HX_PD_GetSmartStatus(HX_U8 AdapterID, HD_SMART_Status_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_SMART_Status_Request::hdSmartStatus);
}

HX_U8 HX_PD_GetHDRaidStatus(HX_U8 AdapterID, HD_RAID_Status_Request* request) {
    return hxsim::ListDisks(__func__, AdapterID, request, &HD_RAID_Status_Request::hdRaidStatus);
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
