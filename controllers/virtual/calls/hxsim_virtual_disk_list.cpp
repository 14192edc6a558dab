// The records of virtual disks: what they are and what they are doing.
#include "calls/hxsim_virtual_disk_list.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "calls/hxsim_list_page.h"
#include "calls/hxsim_session.h"
#include "model/hxsim_activity_row.h"
#include "model/hxsim_stripes.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_battery.h"

namespace hxsim {
namespace {

// The blocks of every virtual disk by position, found in one pass: a list of virtual disks asks for
// all of them.
class BlocksByPosition {
public:
    HX_U16 At(const Adapter& adapter, HX_U16 virtual_disk, std::size_t position) {
        if (virtual_disk >= kNoVirtualDisk) return kNoId;
        if (ids_.empty()) Collect(adapter);
        return ids_[virtual_disk * kWidth + position];
    }

private:
    static constexpr std::size_t kWidth = HX_MAX_HDS;

    void Collect(const Adapter& adapter) {
        ids_.assign(kNoVirtualDisk * kWidth, kNoId);
        for (const Block& block : adapter.blocks) {
            if (block.virtual_disk >= kNoVirtualDisk || block.target) continue;
            if (block.position < kWidth) {
                ids_[block.virtual_disk * kWidth + block.position] = block.id;
            }
        }
    }

    std::vector<HX_U16> ids_;
};

HX_U8 CacheNow(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const bool forced =
        (virtual_disk.cache & CacheBit::kWriteBack) != 0 && ForcesWriteThrough(adapter);
    return forced ? virtual_disk.cache | CacheBit::kForcedWriteThrough : virtual_disk.cache;
}

void FillInfo(const Adapter& adapter, const VirtualDisk& virtual_disk, BlocksByPosition& blocks,
              LD_Info& info) {
    info.ID = virtual_disk.id;
    info.AdapterID = adapter.id;
    info.DGID = virtual_disk.group == kNoId ? kNoDiskGroup : static_cast<HX_U8>(virtual_disk.group);
    info.Status = NumberOf(virtual_disk.state);
    const Activity* const activity = ActivityOf(adapter, Owner::kVirtualDisk, virtual_disk.id);
    info.BGAStatus = NumberOf(activity == nullptr ? ActivityKind::kNone : activity->kind);
    info.StripeBlockSize = virtual_disk.stripe_kib;
    info.RaidMode = NumberOf(virtual_disk.level);
    info.HDCount = virtual_disk.width;
    info.CacheMode = CacheNow(adapter, virtual_disk);
    info.SectorCoefficient = virtual_disk.coefficient;
    info.Size.value = virtual_disk.size;
    SetText(info.Name, virtual_disk.name);
    const std::size_t width = std::min<std::size_t>(virtual_disk.width, HX_MAX_HDS);
    for (std::size_t i = 0; i < width; ++i) {
        info.BlockIDs[i] = blocks.At(adapter, virtual_disk.id, i);
    }
    info.SubLDCount = virtual_disk.legs;
    info.NumParityDisk =
        static_cast<HX_U8>(ParityDisks(RowOf(virtual_disk.level), virtual_disk.legs));
}

}  // namespace

LD_Info DescribeVirtualDisk(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    LD_Info info{};
    BlocksByPosition blocks;
    FillInfo(adapter, virtual_disk, blocks, info);
    return info;
}

LD_Status DescribeStatus(const Adapter& adapter, const VirtualDisk& virtual_disk, Time now) {
    LD_Status status{};
    status.Status = NumberOf(virtual_disk.state);
    status.LDID = virtual_disk.id;
    const Activity* const activity = ActivityOf(adapter, Owner::kVirtualDisk, virtual_disk.id);
    if (activity == nullptr) return status;
    status.Bga = NumberOf(activity->kind);
    status.BgaPercentage = Percentage(*activity, now);
    status.BgaState = NumberOf(activity->state);
    return status;
}

LD_Config DescribeSettings(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    LD_Config config{};
    config.CacheMode = CacheNow(adapter, virtual_disk);
    config.AutoRebuildOn = virtual_disk.auto_rebuild;
    config.Status = NumberOf(virtual_disk.state);
    config.LDID = virtual_disk.id;
    SetText(config.Name, virtual_disk.name);
    return config;
}

}  // namespace hxsim

// ---- Lists ----

HX_U8 HX_LD_GetInfo(HX_U8 AdapterID, LD_Info_Request* request) {
    hxsim::BlocksByPosition blocks;
    const auto describe = [&](const hxsim::Adapter& adapter, const hxsim::VirtualDisk& virtual_disk,
                              hxsim::Time, LD_Info& info) {
        hxsim::FillInfo(adapter, virtual_disk, blocks, info);
    };
    return hxsim::List(__func__, AdapterID, request, &LD_Info_Request::ldInfo,
                       &hxsim::Adapter::virtual_disks, hxcodes::Status::kNoVirtualDisk, describe);
}

HX_U8 HX_LD_GetStatus(HX_U8 AdapterID, LD_Status_Request* request) {
    const auto describe = [](const hxsim::Adapter& adapter, const hxsim::VirtualDisk& virtual_disk,
                             hxsim::Time now, LD_Status& status) {
        status = hxsim::DescribeStatus(adapter, virtual_disk, now);
    };
    return hxsim::List(__func__, AdapterID, request, &LD_Status_Request::ldStatus,
                       &hxsim::Adapter::virtual_disks, hxcodes::Status::kNoVirtualDisk, describe);
}

HX_U8 HX_LD_GetConfig(HX_U8 AdapterID, LD_Config_Request* request) {
    const auto describe = [](const hxsim::Adapter& adapter, const hxsim::VirtualDisk& virtual_disk,
                             hxsim::Time, LD_Config& config) {
        config = hxsim::DescribeSettings(adapter, virtual_disk);
    };
    return hxsim::List(__func__, AdapterID, request, &LD_Config_Request::ldConfig,
                       &hxsim::Adapter::virtual_disks, hxcodes::Status::kNoVirtualDisk, describe);
}

// ---- One virtual disk ----

HX_U8 HX_LD_GetTargetLDInfo(HX_U8 AdapterID, HX_U16 LD_ID, LD_Info* info) {
    return hxsim::Look(
        __func__, AdapterID, [&](const hxsim::Adapter& adapter, hxsim::Time) -> hxcodes::Status {
            if (info == nullptr) return hxcodes::Status::kNullAddress;
            const auto* const virtual_disk = hxsim::Find(adapter.virtual_disks, LD_ID);
            if (virtual_disk == nullptr) return hxcodes::Status::kNoVirtualDisk;
            *info = hxsim::DescribeVirtualDisk(adapter, *virtual_disk);
            if (hxsim::IsHostile()) hxsim::MakeRecordHostile(info, sizeof *info);
            return hxcodes::Status::kSuccess;
        });
}
