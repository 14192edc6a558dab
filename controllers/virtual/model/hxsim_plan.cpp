// Layouts and sizes of new virtual disks and disk groups.
#include "model/hxsim_plan.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "model/hxsim_disk_role.h"
#include "model/hxsim_home.h"
#include "model/hxsim_space.h"
#include "model/hxsim_stripes.h"

namespace hxsim {
namespace {

constexpr HX_U16 kUsualStripe = 64;  // KiB

// The unit to which a size is rounded down, in sectors.
Sectors UnitOf(Rounding rounding) {
    switch (rounding) {
        case Rounding::kToStripe:
            break;  // sizes are whole stripes already
        case Rounding::kTo1GiB:
            return kGib;
        case Rounding::kTo10GiB:
            return 10 * kGib;
    }
    return 1;
}

Status CheckDisks(const Adapter& adapter, std::span<const HX_U16> disks) {
    for (std::size_t i = 0; i < disks.size(); ++i) {
        if (Find(adapter.disks, disks[i]) == nullptr) return Status::kNoDisk;
        if (std::ranges::count(disks.first(i), disks[i]) != 0) return Status::kDiskRepeated;
    }
    return Status::kSuccess;
}

std::vector<Run> FreeRuns(const Adapter& adapter, HX_U16 disk) {
    std::vector<Run> runs;
    for (const Block& block : adapter.blocks) {
        if (block.disk == disk && block.virtual_disk == kNoVirtualDisk) {
            runs.push_back({block.start, block.sectors});
        }
    }
    std::ranges::sort(runs, {}, &Run::start);
    return runs;
}

// The runs of sectors that lie in both lists, which ascend.
std::vector<Run> Overlap(std::span<const Run> some, std::span<const Run> others) {
    std::vector<Run> both;
    std::size_t i = 0;
    std::size_t j = 0;
    while (i < some.size() && j < others.size()) {
        const Sectors start = std::max(some[i].start, others[j].start);
        const Sectors some_end = some[i].start + some[i].sectors;
        const Sectors others_end = others[j].start + others[j].sectors;
        const Sectors end = std::min(some_end, others_end);
        if (start < end) both.push_back({start, end - start});
        ++(some_end < others_end ? i : j);
    }
    return both;
}

// The longest run that all of the disks have free, each anywhere.
Sectors ShortestRun(const Adapter& adapter, std::span<const HX_U16> disks) {
    Sectors shortest = std::numeric_limits<Sectors>::max();
    for (const HX_U16 disk : disks) {
        const Block* const longest = LongestFree(adapter, disk);
        shortest = std::min(shortest, longest == nullptr ? 0 : longest->sectors);
    }
    return shortest;
}

}  // namespace

Sectors Layout::Data(Sectors block) const {
    if (stripe_kib == 0) return 0;  // only in a state file that was tampered with
    return DataSectors(level, Width(), legs, stripe_kib, block);
}

Sectors Layout::Block(Sectors data) const {
    return BlockSectors(level, Width(), legs, stripe_kib, data);
}

Status MakeLayout(const Adapter& adapter, const Wish& wish, Layout& layout) {
    const Adapter_Info& model = adapter.info;
    if (!wish.level) return Status::kBadLevel;
    const LevelRow& level = RowOf(*wish.level);
    if ((model.LogicalDriverMode & level.mode) == 0) return Status::kBadLevel;
    // In the mask of supported stripe sizes, the bit of a size has the value of its KiB.
    const HX_U16 stripe = wish.stripe_kib == 0 ? kUsualStripe : wish.stripe_kib;
    if ((stripe & (stripe - 1)) != 0 || (model.StripeSizeSupported & stripe) == 0) {
        return Status::kBadStripeSize;
    }
    const auto count = static_cast<unsigned>(wish.disks.size());
    if (count > wish.most_disks || !CanBeMade(level, count, wish.legs) ||
        ParityDisks(level, wish.legs) > model.MaxParityDisks) {
        return Status::kBadDiskCount;
    }
    if (const Status status = CheckDisks(adapter, wish.disks); status != Status::kSuccess)
        return status;
    layout.level = level.code;
    layout.legs = level.legs ? static_cast<HX_U8>(LegsOf(level, wish.legs)) : HX_U8{0};
    layout.stripe_kib = stripe;
    layout.disks.assign(wish.disks.begin(), wish.disks.end());
    return Status::kSuccess;
}

Status CheckSharedDisk(const Adapter& adapter, HX_U16 id) {
    const Disk* const disk = Find(adapter.disks, id);
    if (disk == nullptr) return Status::kNoDisk;
    if (!IsReady(*disk)) return Status::kDiskNotReady;
    // A spare that has stepped in will be a spare again, so nothing else may use it.
    const bool spare = disk->spare != Spare::kNone || disk->spare_before != Spare::kNone;
    if (spare || GroupOf(adapter, id) != nullptr) return Status::kDiskTaken;
    if (disk->has_system) return Status::kHoldsSystem;
    return Status::kSuccess;
}

Status CheckWholeDisk(const Adapter& adapter, HX_U16 id) {
    const Status status = CheckSharedDisk(adapter, id);
    if (status != Status::kSuccess && status != Status::kHoldsSystem) return status;
    if (!IsFree(adapter, *Find(adapter.disks, id)) || CarriesBlocks(adapter, id)) {
        return Status::kDiskTaken;
    }
    return status;
}

Status ChooseSize(const Layout& layout, Sectors run, Sectors wanted, HX_U8 rounding,
                  Sectors& size) {
    const auto scheme = ToCode<Rounding>(rounding);
    if (!scheme) return Status::kBadRounding;
    const Sectors most = layout.Data(run);
    if (most == 0 || wanted > most) return Status::kNoSpace;
    const Sectors chosen = wanted == 0 ? most : layout.Data(layout.Block(wanted));
    const Sectors rounded = chosen - chosen % UnitOf(*scheme);
    if (rounded == 0) return wanted == 0 ? Status::kNoSpace : Status::kBadValue;
    size = rounded;
    return Status::kSuccess;
}

Status CheckVirtualDiskCount(const Adapter& adapter) {
    const bool full = adapter.virtual_disks.size() >= adapter.info.MaxLogicalDrive;
    return full ? Status::kTooManyVirtualDisks : Status::kSuccess;
}

Status PlanVirtualDisk(const Adapter& adapter, const Create_LD_Param& param, Sectors wanted,
                       VirtualDiskPlan& plan) {
    if (!ToCode<Rounding>(param.RoundingScheme)) return Status::kBadRounding;
    if (param.HDCount > HX_MAX_HDS) return Status::kBadDiskCount;
    const Wish wish{ToCode<Level>(param.RaidMode), param.SubLDCount, param.StripeBlockSize,
                    std::span(param.HDIDs, param.HDCount), adapter.info.MaxPDPerVD};
    Status status = MakeLayout(adapter, wish, plan.layout);
    for (const HX_U16 disk : plan.layout.disks) {
        if (status == Status::kSuccess) status = CheckSharedDisk(adapter, disk);
    }
    if (status == Status::kSuccess) status = CheckVirtualDiskCount(adapter);
    if (status != Status::kSuccess) return status;
    status = ChooseSize(plan.layout, ShortestRun(adapter, wish.disks), wanted, param.RoundingScheme,
                        plan.size);
    if (status != Status::kSuccess) return status;
    plan.block = plan.layout.Block(plan.size);
    for (const HX_U16 disk : plan.layout.disks) {
        const Sectors start = FirstFree(adapter, disk, plan.block)->start;
        status = CheckCut(adapter, disk, start, plan.block);
        if (status != Status::kSuccess) return status;
        plan.starts.push_back(start);
    }
    return Status::kSuccess;
}

Layout LayoutOf(const Adapter& adapter, const DiskGroup& group) {
    return {group.level, group.legs, group.stripe_kib,
            DisksOf(adapter, Owner::kDiskGroup, group.id)};
}

Sectors SmallestDisk(const Adapter& adapter, std::span<const HX_U16> disks) {
    Sectors smallest = std::numeric_limits<Sectors>::max();
    bool any = false;
    for (const HX_U16 id : disks) {
        const Disk* const disk = Find(adapter.disks, id);
        if (disk == nullptr) continue;
        smallest = std::min(smallest, UsableSectors(*disk));
        any = true;
    }
    return any ? smallest : 0;
}

Sectors ManagedSpace(const Adapter& adapter, const Layout& layout) {
    return layout.Data(SmallestDisk(adapter, layout.disks));
}

std::vector<Run> CommonFree(const Adapter& adapter, std::span<const HX_U16> disks) {
    std::vector<Run> common;
    bool first = true;
    for (const HX_U16 disk : disks) {
        if (Find(adapter.disks, disk) == nullptr) continue;  // a lost position
        const std::vector<Run> runs = FreeRuns(adapter, disk);
        common = first ? runs : Overlap(common, runs);
        first = false;
    }
    return common;
}

Run Longest(std::span<const Run> runs) {
    Run longest;
    for (const Run& run : runs) {
        if (run.sectors > longest.sectors) longest = run;
    }
    return longest;
}

}  // namespace hxsim
