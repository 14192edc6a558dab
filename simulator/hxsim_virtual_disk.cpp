// The virtual disks: what they are, what they are doing, and how large others could be.
#include "hxsim_virtual_disk.h"

#include "hxraid.h"
#include "hxsim_adapter.h"
#include "hxsim_capacity.h"
#include "hxraid_codes.h"
#include "hxsim_level.h"
#include "hxsim_library.h"
#include "hxsim_machine.h"
#include "hxsim_page.h"
#include "hxsim_text.h"

namespace hxsim {
namespace {

void DescribeVirtualDisk(HX_U8 adapter, const VirtualDisk& virtual_disk, LD_Info& info) {
    info.ID = virtual_disk.id;
    info.AdapterID = adapter;
    info.DGID = virtual_disk.group;
    info.Status = HXSIM_STATE_OPTIMAL;
    info.StripeBlockSize = virtual_disk.stripe_kib;
    info.RaidMode = virtual_disk.level;
    info.CacheMode = virtual_disk.cache;
    info.SectorCoefficient = 1;
    info.Size.value = SizeOf(virtual_disk);
    SetText(info.Name, virtual_disk.name);
    for (const Block& block : MachineOf(adapter).blocks) {
        if (block.virtual_disk == virtual_disk.id) info.BlockIDs[info.HDCount++] = block.id;
    }
    info.SubLDCount = virtual_disk.legs;
    info.NumParityDisk = ParityDisks(*FindLevel(virtual_disk.level), virtual_disk.legs);
}

void DescribeActivity(HX_U8, const VirtualDisk& virtual_disk, LD_Status& status) {
    status.Status = HXSIM_STATE_OPTIMAL;
    status.LDID = virtual_disk.id;
}

void DescribeSettings(HX_U8, const VirtualDisk& virtual_disk, LD_Config& config) {
    config.CacheMode = virtual_disk.cache;
    config.AutoRebuildOn = 1;
    config.Status = HXSIM_STATE_OPTIMAL;
    config.LDID = virtual_disk.id;
    SetText(config.Name, virtual_disk.name);
}

// What a size is rounded down to; 0 for a code that no scheme has.
std::uint64_t SectorsOfRounding(HX_U8 scheme) {
    constexpr std::uint64_t kGib = 2097152;
    switch (scheme) {
        case HXSIM_ROUND_TO_STRIPE:
            return 1;
        case HXSIM_ROUND_TO_1_GIB:
            return kGib;
        case HXSIM_ROUND_TO_10_GIB:
            return 10 * kGib;
        default:
            return 0;
    }
}

// Sets param.Size to the most that a virtual disk made by it could have: a new one, when
// `virtual_disk` is kNoVirtualDisk, or that one on other disks or at another level.
HX_U8 Size(HX_U8 adapter, HX_U16 virtual_disk, HX_U16 stripe_kib, Create_LD_Param& param) {
    const std::uint64_t unit = SectorsOfRounding(param.RoundingScheme);
    if (unit == 0) return HXSIM_BAD_ROUNDING;
    if (param.HDCount > HX_MAX_HDS) return HXSIM_BAD_DISK_COUNT;
    const Plan plan{param.RaidMode, param.SubLDCount, stripe_kib,
                    std::span(param.HDIDs, param.HDCount), ModelOf(adapter).MaxPDPerVD};
    const auto run_on = [&](const Disk& disk, std::uint64_t& run) {
        return RunForVirtualDisk(adapter, disk, virtual_disk, run);
    };
    std::uint64_t sectors = 0;
    if (const HX_U8 status = SizePlan(adapter, plan, run_on, sectors); status != HX_SUCCESS) {
        return status;
    }
    sectors -= sectors % unit;
    if (sectors == 0) return HXSIM_NO_SPACE;
    param.Size.value = sectors;
    return HX_SUCCESS;
}

}  // namespace

std::uint64_t SizeOf(const VirtualDisk& virtual_disk) {
    return DataDisks(*FindLevel(virtual_disk.level),
                     static_cast<unsigned>(virtual_disk.disks.size()), virtual_disk.legs) *
           virtual_disk.sectors;
}

}  // namespace hxsim

// ---- Lists ----

HX_U8 HX_LD_GetInfo(HX_U8 AdapterID, LD_Info_Request* request) {
    return hxsim::List(AdapterID, request, &LD_Info_Request::ldInfo, hxsim::kVirtualDisks,
                       hxsim::DescribeVirtualDisk);
}

HX_U8 HX_LD_GetStatus(HX_U8 AdapterID, LD_Status_Request* request) {
    return hxsim::List(AdapterID, request, &LD_Status_Request::ldStatus, hxsim::kVirtualDisks,
                       hxsim::DescribeActivity);
}

HX_U8 HX_LD_GetConfig(HX_U8 AdapterID, LD_Config_Request* request) {
    return hxsim::List(AdapterID, request, &LD_Config_Request::ldConfig, hxsim::kVirtualDisks,
                       hxsim::DescribeSettings);
}

// ---- One virtual disk ----

HX_U8 HX_LD_GetTargetLDInfo(HX_U8 AdapterID, HX_U16 LD_ID, LD_Info* info) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (info == nullptr) return HXSIM_NULL_ADDRESS;
    const auto* const virtual_disk = hxsim::Find(AdapterID, hxsim::kVirtualDisks, LD_ID);
    if (virtual_disk == nullptr) return HXSIM_NO_VIRTUAL_DISK;
    *info = LD_Info{};
    hxsim::DescribeVirtualDisk(AdapterID, *virtual_disk, *info);
    return HX_SUCCESS;
}

// ---- Sizes ----

HX_U8 HX_LD_GetMaxSize(HX_U8 AdapterID, Create_LD_Param* param) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (param == nullptr) return HXSIM_NULL_ADDRESS;
    return hxsim::Size(AdapterID, hxsim::kNoVirtualDisk, param->StripeBlockSize, *param);
}

HX_U8 HX_LD_GetMigratedLdSize(HX_U8 AdapterID, Create_LD_Param* param) {
    if (const HX_U8 status = hxsim::CheckAdapter(AdapterID); status != HX_SUCCESS) return status;
    if (param == nullptr) return HXSIM_NULL_ADDRESS;
    const auto* const virtual_disk = hxsim::Find(AdapterID, hxsim::kVirtualDisks, param->LDID);
    if (virtual_disk == nullptr) return HXSIM_NO_VIRTUAL_DISK;
    if (virtual_disk->group != hxsim::kNoDiskGroup) return HXSIM_ON_DISK_GROUP;
    // The stripes stay as large as they are unless the caller says otherwise.
    const HX_U16 stripe_kib =
        param->StripeBlockSize == 0 ? virtual_disk->stripe_kib : param->StripeBlockSize;
    Create_LD_Param migrated = *param;
    const HX_U8 status = hxsim::Size(AdapterID, virtual_disk->id, stripe_kib, migrated);
    if (status != HX_SUCCESS) return status;
    if (migrated.Size.value < hxsim::SizeOf(*virtual_disk)) return HXSIM_TOO_SMALL;
    param->Size = migrated.Size;
    return HX_SUCCESS;
}
