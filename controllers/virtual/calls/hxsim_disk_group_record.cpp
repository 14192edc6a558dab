// Fills the records of disk groups.
#include "calls/hxsim_disk_group_record.h"

#include <algorithm>
#include <iterator>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_plan.h"
#include "model/hxsim_record_bytes.h"
#include "model/hxsim_text.h"

namespace hxsim {
namespace {

void DescribeDisks(const Layout& layout, DG_Info& info) {
    SetZero(info.PDIDs);
    info.PDCount = layout.Width();
    std::ranges::copy_n(layout.disks.begin(),
                        std::min<std::ptrdiff_t>(layout.Width(), std::ssize(info.PDIDs)),
                        info.PDIDs);
}

void DescribeSlots(const Adapter& adapter, const DiskGroup& group, DG_Info& info) {
    SetZero(info.VDSlotCount, info.VDSlotSize);
    std::ranges::fill(info.VDIDs, kNoId);
    for (const VirtualDisk& each : adapter.virtual_disks) {
        if (each.group != group.id || each.slot >= HX_MAX_VD_SLOTS) continue;
        ++info.VDSlotCount;
        info.VDSlotSize[each.slot].value = each.size;
        info.VDIDs[each.slot] = each.id;
    }
}

void DescribeSpares(const Adapter& adapter, const DiskGroup& group, DG_Info& info) {
    SetZero(info.SparePDCount, info.SparePDIDs);
    for (const Disk& disk : adapter.disks) {
        if (disk.spare != Spare::kGroup || disk.spare_group != group.id) continue;
        if (info.SparePDCount == HX_MAX_DG_SPARES) break;
        info.SparePDIDs[info.SparePDCount++] = disk.id;
    }
}

}  // namespace

void Describe(const Adapter& adapter, const DiskGroup& group, Time, DG_Info& info) {
    const Layout layout = LayoutOf(adapter, group);
    const Activity* const activity = ActivityOf(adapter, Owner::kDiskGroup, group.id);
    info.DGID = group.id;
    SetText(info.Name, group.name);
    info.RaidMode = NumberOf(group.level);
    info.SubVDCount = group.legs;
    info.NumParityDisk = static_cast<HX_U8>(ParityDisks(RowOf(group.level), group.legs));
    info.AdapterID = adapter.id;
    info.StripeBlockSize = group.stripe_kib;
    info.BlockSize = kSectorSize;
    info.TotalManagedSpace.value = ManagedSpace(adapter, layout);
    // The size that one more virtual disk could have.
    info.RemainingManagedSpace.value =
        layout.Data(Longest(CommonFree(adapter, layout.disks)).sectors);
    info.SmallestAvailablePDSize.value = SmallestDisk(adapter, layout.disks);
    info.Status = NumberOf(group.state);
    DescribeDisks(layout, info);
    DescribeSlots(adapter, group, info);
    DescribeSpares(adapter, group, info);
    info.BgaType = NumberOf(activity == nullptr ? ActivityKind::kNone : activity->kind);
    info.BgaState = NumberOf(activity == nullptr ? ActivityState::kIdle : activity->state);
    SetZero(info.Reserved1, info.Reserved2, info.Reserved3, info.Reserved4, info.Reserved5,
            info.Reserved6);
}

void Describe(const Adapter&, const DiskGroup& group, Time, DG_Config& config) {
    config.DGID = group.id;
    config.WriteCacheOn = group.write_cache;
    SetText(config.Name, group.name);
    SetZero(config.Reserved);
}

}  // namespace hxsim
