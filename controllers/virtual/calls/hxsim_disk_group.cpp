// The disk groups: what they are; how they are set and deleted.
#include "calls/hxsim_disk_group.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <vector>

#include "calls/hxsim_list_page.h"
#include "calls/hxsim_session.h"
#include "calls/hxsim_virtual_disk.h"
#include "model/hxsim_level.h"
#include "model/hxsim_plan.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_activity.h"
#include "rules/hxsim_event_queue.h"
#include "rules/hxsim_migration.h"
#include "rules/hxsim_repair.h"

namespace hxsim {
namespace {

void DescribeSlots(const Adapter& adapter, const DiskGroup& group, DG_Info& info) {
    std::ranges::fill(info.VDIDs, kNoId);
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group != group.id || each.slot >= HX_MAX_VD_SLOTS) continue;
        ++info.VDSlotCount;
        info.VDSlotSize[each.slot].value = each.size;
        info.VDIDs[each.slot] = each.id;
    }
}

void DescribeSpares(const Adapter& adapter, const DiskGroup& group, DG_Info& info) {
    for (const Disk& disk : adapter.disks) {
        if (disk.spare != Spare::kGroup || disk.spare_group != group.id) continue;
        if (info.SparePDCount == HX_MAX_DG_SPARES) break;
        info.SparePDIDs[info.SparePDCount++] = disk.id;
    }
}

// What is set is said of the group; its disks have it as long as they serve it.
void FillSettings(const Adapter&, const DiskGroup& group, Time, DG_Config& config) {
    config.DGID = group.id;
    config.WriteCacheOn = group.write_cache;
    SetText(config.Name, group.name);
}

}  // namespace

DG_Info DescribeDiskGroup(const Adapter& adapter, const DiskGroup& group) {
    DG_Info info{};
    const Layout layout = LayoutOf(adapter, group);
    info.DGID = group.id;
    SetText(info.Name, group.name);
    info.RaidMode = group.level;
    info.SubVDCount = group.legs;
    if (layout.level != nullptr) {
        info.NumParityDisk = static_cast<HX_U8>(ParityDisks(*layout.level, group.legs));
    }
    info.AdapterID = adapter.id;
    info.StripeBlockSize = group.stripe_kib;
    info.BlockSize = kSectorSize;
    info.TotalManagedSpace.value = ManagedSpace(adapter, layout);
    // What one virtual disk more would get.
    info.RemainingManagedSpace.value =
        layout.Data(Longest(CommonFree(adapter, layout.disks)).sectors);
    info.SmallestAvailablePDSize.value = SmallestDisk(adapter, layout.disks);
    info.Status = group.state;
    info.PDCount = layout.Width();
    std::ranges::copy_n(layout.disks.begin(),
                        std::min<std::ptrdiff_t>(layout.Width(), std::ssize(info.PDIDs)),
                        info.PDIDs);
    DescribeSlots(adapter, group, info);
    DescribeSpares(adapter, group, info);
    if (const Activity* const activity = ActivityOf(adapter, Owner::kDiskGroup, group.id)) {
        info.BgaType = activity->kind;
        info.BgaState = activity->state;
    }
    return info;
}

HX_U8 SetDiskGroup(Adapter& adapter, Time now, HX_U16 id, const DG_Config& config) {
    DiskGroup* const group = Find(adapter.disk_groups, id);
    if (group == nullptr) return HXSIM_NO_DISK_GROUP;
    group->name = NameOf(config.Name);
    group->write_cache = config.WriteCacheOn != 0;
    for (const HX_U16 disk : DisksOf(adapter, Owner::kDiskGroup, id)) {
        SetWriteCache(adapter, now, disk, group->write_cache);
    }
    return HX_SUCCESS;
}

HX_U8 DeleteDiskGroup(Adapter& adapter, Time now, HX_U16 id) {
    if (Find(adapter.disk_groups, id) == nullptr) return HXSIM_NO_DISK_GROUP;
    while (const Activity* const activity = ActivityOf(adapter, Owner::kDiskGroup, id)) {
        Abort(adapter, now, activity->id);
    }
    std::vector<HX_U16> members;
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group == id) members.push_back(each.id);
    }
    for (const HX_U16 member : members) RemoveVirtualDisk(adapter, now, member);
    DropHomes(adapter, Owner::kDiskGroup, id);
    std::erase_if(adapter.disk_groups, [&](const DiskGroup& each) { return each.id == id; });
    for (Disk& disk : adapter.disks) {
        if (disk.spare_before == Spare::kGroup && disk.spare_group_before == id) {
            disk.spare_before = Spare::kNone;
            disk.spare_group_before = kNoId;
        }
        if (disk.spare == Spare::kGroup && disk.spare_group == id) {
            disk.spare = Spare::kNone;
            disk.spare_group = kNoId;
            Queue(adapter, now, kSpareRemoved, disk.id);
        }
        ReturnSpare(adapter, now, disk);
    }
    Queue(adapter, now, kDiskGroupDeleted, id);
    return HX_SUCCESS;
}

}  // namespace hxsim

// ---- Lists ----

HX_U8 HX_DG_GetInfo(HX_U8 AdapterID, DG_Info_Request* request) {
    const auto describe = [](const hxsim::Adapter& adapter, const hxsim::DiskGroup& group,
                             hxsim::Time,
                             DG_Info& info) { info = hxsim::DescribeDiskGroup(adapter, group); };
    return hxsim::List(__func__, AdapterID, request, &DG_Info_Request::dgInfo,
                       &hxsim::Adapter::disk_groups, HXSIM_NO_DISK_GROUP, describe);
}

HX_U8 HX_DG_GetConfig(HX_U8 AdapterID, DG_Config_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &DG_Config_Request::dgConfig,
                       &hxsim::Adapter::disk_groups, HXSIM_NO_DISK_GROUP, hxsim::FillSettings);
}

// ---- Changes ----

HX_U8 HX_DG_SetConfig(HX_U8 AdapterID, HX_U16 DG_ID, DG_Config* config) {
    return hxsim::Change(__func__, AdapterID,
                         [&](hxsim::Adapter& adapter, hxsim::Time now) -> HX_U8 {
                             if (config == nullptr) return HXSIM_NULL_ADDRESS;
                             return hxsim::SetDiskGroup(adapter, now, DG_ID, *config);
                         });
}

HX_U8 HX_CreateOrModify_DG(HX_U8 AdapterID, CreateOrModify_DG_Param* param, HX_U8 sizeOnly) {
    if (sizeOnly != 0) {
        return hxsim::Look(__func__, AdapterID,
                           [&](const hxsim::Adapter& adapter, hxsim::Time) -> HX_U8 {
                               if (param == nullptr) return HXSIM_NULL_ADDRESS;
                               return hxsim::SizeDiskGroup(adapter, *param);
                           });
    }
    return hxsim::Change(__func__, AdapterID,
                         [&](hxsim::Adapter& adapter, hxsim::Time now) -> HX_U8 {
                             if (param == nullptr) return HXSIM_NULL_ADDRESS;
                             return hxsim::CreateOrModifyDiskGroup(adapter, now, *param);
                         });
}

HX_U8 HX_DG_Delete(HX_U8 AdapterID, HX_U16 DG_ID) {
    return hxsim::Change(__func__, AdapterID, [&](hxsim::Adapter& adapter, hxsim::Time now) {
        return hxsim::DeleteDiskGroup(adapter, now, DG_ID);
    });
}

HX_U8 HX_DG_StartMigration(HX_U8 AdapterID, CreateOrModify_DG_Param* param) {
    return hxsim::Change(__func__, AdapterID,
                         [&](hxsim::Adapter& adapter, hxsim::Time now) -> HX_U8 {
                             if (param == nullptr) return HXSIM_NULL_ADDRESS;
                             return hxsim::StartGroupMigration(adapter, now, *param);
                         });
}
