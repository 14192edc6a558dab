// The disk groups, and how large others could be.
#include <algorithm>

#include "hxraid.h"
#include "hxsim_adapter.h"
#include "hxsim_capacity.h"
#include "hxraid_codes.h"
#include "hxsim_level.h"
#include "hxsim_library.h"
#include "hxsim_machine.h"
#include "hxsim_page.h"
#include "hxsim_text.h"
#include "hxsim_virtual_disk.h"

namespace hxsim {
namespace {

constexpr HX_U32 kSectorSize = 512;

std::uint64_t SmallestDisk(HX_U8 adapter, const DiskGroup& group) {
    std::uint64_t smallest = std::numeric_limits<std::uint64_t>::max();
    for (const HX_U16 id : group.disks) {
        smallest = std::min(smallest, UsableSectors(*Find(adapter, kDisks, id)));
    }
    return smallest;
}

std::uint64_t UsedSectors(HX_U8 adapter, const DiskGroup& group) {
    std::uint64_t used = 0;
    for (const VirtualDisk& virtual_disk : MachineOf(adapter).virtual_disks) {
        if (virtual_disk.group == group.id) used += SizeOf(virtual_disk);
    }
    return used;
}

void DescribeDiskGroup(HX_U8 adapter, const DiskGroup& group, DG_Info& info) {
    info.DGID = group.id;
    SetText(info.Name, group.name);
    info.RaidMode = group.level;
    info.SubVDCount = group.legs;
    info.NumParityDisk = ParityDisks(*FindLevel(group.level), group.legs);
    info.AdapterID = adapter;
    info.StripeBlockSize = group.stripe_kib;
    info.BlockSize = kSectorSize;
    const Plan plan{group.level, group.legs, group.stripe_kib, group.disks, 0};
    info.SmallestAvailablePDSize.value = SmallestDisk(adapter, group);
    info.TotalManagedSpace.value = DataSectors(plan, info.SmallestAvailablePDSize.value);
    info.RemainingManagedSpace.value = info.TotalManagedSpace.value - UsedSectors(adapter, group);
    info.Status = HXSIM_STATE_OPTIMAL;
    for (const HX_U16 disk : group.disks) info.PDIDs[info.PDCount++] = disk;
    std::ranges::fill(info.VDIDs, kNoId);
    for (const VirtualDisk& virtual_disk : MachineOf(adapter).virtual_disks) {
        if (virtual_disk.group != group.id) continue;
        info.VDSlotSize[info.VDSlotCount].value = SizeOf(virtual_disk);
        info.VDIDs[info.VDSlotCount++] = virtual_disk.id;
    }
    for (const HX_U16 disk : group.spares) info.SparePDIDs[info.SparePDCount++] = disk;
}

// The write cache is off, as it is on each of the disks.
void DescribeSettings(HX_U8, const DiskGroup& group, DG_Config& config) {
    config.DGID = group.id;
    SetText(config.Name, group.name);
}

}  // namespace
}  // namespace hxsim

// ---- Lists ----

HX_U8 HX_DG_GetInfo(HX_U8 AdapterID, DG_Info_Request* request) {
    return hxsim::List(AdapterID, request, &DG_Info_Request::dgInfo, hxsim::kDiskGroups,
                       hxsim::DescribeDiskGroup);
}

HX_U8 HX_DG_GetConfig(HX_U8 AdapterID, DG_Config_Request* request) {
    return hxsim::List(AdapterID, request, &DG_Config_Request::dgConfig, hxsim::kDiskGroups,
                       hxsim::DescribeSettings);
}

// ---- Sizes ----

HX_U8 HX_CreateOrModify_DG(HX_U8 AdapterID, CreateOrModify_DG_Param* param, HX_U8 sizeOnly) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    const Adapter_Info& model = hxsim::ModelOf(AdapterID);
    if (!model.DiskGroupSupport) return HXSIM_NOT_SUPPORTED;
    if (param == nullptr) return HXSIM_NULL_ADDRESS;
    if (sizeOnly != 1) return HXSIM_NOT_SUPPORTED;

    const hxsim::DiskGroup* const group = hxsim::Find(AdapterID, hxsim::kDiskGroups, param->DGID);
    if (group == nullptr && param->DGID != HX_NEW_ID) return HXSIM_NO_DISK_GROUP;
    if (param->BlockSize != 0 && param->BlockSize != hxsim::kSectorSize) {
        return HXSIM_BAD_SECTOR_SIZE;
    }
    if (param->PDCount > HX_MAX_HDS) return HXSIM_BAD_DISK_COUNT;
    const bool keeps_stripe = group != nullptr && param->StripeBlockSize == 0;
    const hxsim::Plan plan{param->RaidMode, param->SubVDCount,
                           keeps_stripe ? group->stripe_kib : param->StripeBlockSize,
                           std::span(param->PDIDs, param->PDCount), model.MaxPDPerDG};
    const auto run_on = [&](const hxsim::Disk& disk, std::uint64_t& run) {
        return hxsim::RunForDiskGroup(AdapterID, disk, group, run);
    };
    std::uint64_t sectors = 0;
    const HX_U8 status = hxsim::SizePlan(AdapterID, plan, run_on, sectors);
    if (status != HX_SUCCESS) return status;
    if (group != nullptr && sectors < hxsim::UsedSectors(AdapterID, *group)) return HXSIM_TOO_SMALL;
    param->Size.value = sectors;
    return HX_SUCCESS;
}
