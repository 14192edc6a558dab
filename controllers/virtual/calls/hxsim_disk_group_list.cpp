// The records of disk groups.
#include "calls/hxsim_disk_group_list.h"

#include <algorithm>
#include <iterator>

#include "calls/hxsim_list_page.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_plan.h"
#include "model/hxsim_stripes.h"
#include "model/hxsim_text.h"

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
    info.RaidMode = NumberOf(group.level);
    info.SubVDCount = group.legs;
    info.NumParityDisk = static_cast<HX_U8>(ParityDisks(RowOf(group.level), group.legs));
    info.AdapterID = adapter.id;
    info.StripeBlockSize = group.stripe_kib;
    info.BlockSize = kSectorSize;
    info.TotalManagedSpace.value = ManagedSpace(adapter, layout);
    // What one virtual disk more would get.
    info.RemainingManagedSpace.value =
        layout.Data(Longest(CommonFree(adapter, layout.disks)).sectors);
    info.SmallestAvailablePDSize.value = SmallestDisk(adapter, layout.disks);
    info.Status = NumberOf(group.state);
    info.PDCount = layout.Width();
    std::ranges::copy_n(layout.disks.begin(),
                        std::min<std::ptrdiff_t>(layout.Width(), std::ssize(info.PDIDs)),
                        info.PDIDs);
    DescribeSlots(adapter, group, info);
    DescribeSpares(adapter, group, info);
    if (const Activity* const activity = ActivityOf(adapter, Owner::kDiskGroup, group.id)) {
        info.BgaType = NumberOf(activity->kind);
        info.BgaState = NumberOf(activity->state);
    }
    return info;
}

}  // namespace hxsim

// ---- Lists ----

HX_U8 HX_DG_GetInfo(HX_U8 AdapterID, DG_Info_Request* request) {
    const auto describe = [](const hxsim::Adapter& adapter, const hxsim::DiskGroup& group,
                             hxsim::Time,
                             DG_Info& info) { info = hxsim::DescribeDiskGroup(adapter, group); };
    return hxsim::List(__func__, AdapterID, request, &DG_Info_Request::dgInfo,
                       &hxsim::Adapter::disk_groups, hxcodes::Status::kNoDiskGroup, describe);
}

HX_U8 HX_DG_GetConfig(HX_U8 AdapterID, DG_Config_Request* request) {
    return hxsim::List(__func__, AdapterID, request, &DG_Config_Request::dgConfig,
                       &hxsim::Adapter::disk_groups, hxcodes::Status::kNoDiskGroup,
                       hxsim::FillSettings);
}
