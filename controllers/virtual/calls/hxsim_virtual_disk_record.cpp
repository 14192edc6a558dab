// Fills the records of virtual disks.
#include "calls/hxsim_virtual_disk_record.h"

#include <algorithm>

#include "model/hxsim_activity_row.h"
#include "model/hxsim_record_bytes.h"
#include "model/hxsim_text.h"
#include "rules/hxsim_battery.h"

namespace hxsim {
namespace {

constexpr std::size_t kWidth = HX_MAX_HDS;

HX_U8 CacheNow(const Adapter& adapter, const VirtualDisk& virtual_disk) {
    const bool forced =
        (virtual_disk.cache & CacheBit::kWriteBack) != 0 && ForcesWriteThrough(adapter);
    return forced ? virtual_disk.cache | CacheBit::kForcedWriteThrough : virtual_disk.cache;
}

}  // namespace

HX_U16 BlocksByPosition::At(const Adapter& adapter, HX_U16 virtual_disk, std::size_t position) {
    if (virtual_disk >= kNoVirtualDisk) return kNoId;
    if (ids_.empty()) {
        ids_.assign(kNoVirtualDisk * kWidth, kNoId);
        for (const Block& block : adapter.blocks) {
            if (block.virtual_disk >= kNoVirtualDisk || block.target) continue;
            if (block.position < kWidth) {
                ids_[block.virtual_disk * kWidth + block.position] = block.id;
            }
        }
    }
    return ids_[virtual_disk * kWidth + position];
}

void Describe(const Adapter& adapter, const VirtualDisk& virtual_disk, BlocksByPosition& blocks,
              LD_Info& info) {
    const Activity* const activity = ActivityOf(adapter, Owner::kVirtualDisk, virtual_disk.id);
    info.ID = virtual_disk.id;
    info.AdapterID = adapter.id;
    info.DGID = virtual_disk.group == kNoId ? kNoDiskGroup : static_cast<HX_U8>(virtual_disk.group);
    info.Status = NumberOf(virtual_disk.state);
    info.BGAStatus = NumberOf(activity == nullptr ? ActivityKind::kNone : activity->kind);
    info.StripeBlockSize = virtual_disk.stripe_kib;
    info.RaidMode = NumberOf(virtual_disk.level);
    info.HDCount = virtual_disk.width;
    info.CacheMode = CacheNow(adapter, virtual_disk);
    info.SectorCoefficient = virtual_disk.coefficient;
    info.Size.value = virtual_disk.size;
    SetText(info.Name, virtual_disk.name);
    SetZero(info.BlockIDs);
    const std::size_t width = std::min<std::size_t>(virtual_disk.width, kWidth);
    for (std::size_t i = 0; i < width; ++i) {
        info.BlockIDs[i] = blocks.At(adapter, virtual_disk.id, i);
    }
    info.SubLDCount = virtual_disk.legs;
    info.NumParityDisk =
        static_cast<HX_U8>(ParityDisks(RowOf(virtual_disk.level), virtual_disk.legs));
    SetZero(info.Reserved1, info.Reserved2);
}

void Describe(const Adapter& adapter, const VirtualDisk& virtual_disk, Time now,
              LD_Status& status) {
    const Activity* const activity = ActivityOf(adapter, Owner::kVirtualDisk, virtual_disk.id);
    status.Status = NumberOf(virtual_disk.state);
    status.LDID = virtual_disk.id;
    status.Bga = NumberOf(activity == nullptr ? ActivityKind::kNone : activity->kind);
    status.BgaPercentage = activity == nullptr ? HX_U16{0} : Percentage(*activity, now);
    status.BgaState = NumberOf(activity == nullptr ? ActivityState::kIdle : activity->state);
    SetZero(status.Reserved);
}

void Describe(const Adapter& adapter, const VirtualDisk& virtual_disk, Time, LD_Config& config) {
    config.CacheMode = CacheNow(adapter, virtual_disk);
    config.AutoRebuildOn = virtual_disk.auto_rebuild;
    config.Status = NumberOf(virtual_disk.state);
    config.LDID = virtual_disk.id;
    SetText(config.Name, virtual_disk.name);
    SetZero(config.Reserved1, config.Reserved2);
}

}  // namespace hxsim
