// How much fits: what is left of disks, and the size of what is made of them.
#include "hxsim_capacity.h"

#include "hxsim_adapter.h"
#include "hxsim_disk.h"
#include "hxsim_level.h"

namespace hxsim {
namespace {

constexpr HX_U16 kUsualStripe = 64;  // KiB

HX_U16 StripeOf(const Plan& plan) { return plan.stripe_kib == 0 ? kUsualStripe : plan.stripe_kib; }

// A spare waits for other disks, and the space of a disk group's disks is the group's.
bool IsTaken(const Part& part) {
    constexpr HX_U8 kSpare = HXSIM_DISK_GLOBAL_SPARE | HXSIM_DISK_GROUP_SPARE;
    return (part.status & kSpare) != 0 || part.group != nullptr;
}

}  // namespace

std::uint64_t FreeSectors(HX_U8 adapter, const Disk& disk) {
    if (IsTaken(PartOf(adapter, disk))) return 0;
    std::uint64_t free = 0;
    for (const Block& block : MachineOf(adapter).blocks) {
        if (block.disk == disk.id && block.virtual_disk == kNoVirtualDisk) free += block.sectors;
    }
    return free;
}

HX_U8 RunForVirtualDisk(HX_U8 adapter, const Disk& disk, HX_U16 virtual_disk, std::uint64_t& run) {
    if (IsTaken(PartOf(adapter, disk))) return HXSIM_DISK_TAKEN;
    run = 0;
    std::uint64_t current = 0;  // the run that ends with the block before this one
    for (const Block& block : MachineOf(adapter).blocks) {
        if (block.disk != disk.id) continue;
        const bool usable =
            block.virtual_disk == kNoVirtualDisk || block.virtual_disk == virtual_disk;
        current = usable ? current + block.sectors : 0;
        run = std::max(run, current);
    }
    return HX_SUCCESS;
}

HX_U8 RunForDiskGroup(HX_U8 adapter, const Disk& disk, const DiskGroup* group, std::uint64_t& run) {
    const Part part = PartOf(adapter, disk);
    const bool has_it = group != nullptr && part.group == group;
    if (!has_it && part.status != HXSIM_DISK_ONLINE) return HXSIM_DISK_TAKEN;
    run = UsableSectors(disk);
    return HX_SUCCESS;
}

HX_U8 CheckPlan(HX_U8 adapter, const Plan& plan) {
    const Adapter_Info& model = ModelOf(adapter);
    const Level* const level = FindLevel(plan.level);
    if (level == nullptr || (model.LogicalDriverMode & level->mode) == 0) return HXSIM_BAD_LEVEL;
    // A stripe size is its own bit in the mask of those that are supported.
    const HX_U16 stripe = StripeOf(plan);
    if ((stripe & (stripe - 1)) != 0 || (model.StripeSizeSupported & stripe) == 0) {
        return HXSIM_BAD_STRIPE_SIZE;
    }
    const auto count = static_cast<unsigned>(plan.disks.size());
    if (count > plan.most_disks || DataDisks(*level, count, plan.legs) == 0) {
        return HXSIM_BAD_DISK_COUNT;
    }
    for (std::size_t i = 0; i < plan.disks.size(); ++i) {
        if (Find(adapter, kDisks, plan.disks[i]) == nullptr) return HXSIM_NO_DISK;
        if (Contains(plan.disks.first(i), plan.disks[i])) return HXSIM_DISK_REPEATED;
    }
    return HX_SUCCESS;
}

std::uint64_t DataSectors(const Plan& plan, std::uint64_t run) {
    const auto count = static_cast<unsigned>(plan.disks.size());
    return DataDisks(*FindLevel(plan.level), count, plan.legs) *
           (run - run % SectorsOfStripe(StripeOf(plan)));
}

}  // namespace hxsim
