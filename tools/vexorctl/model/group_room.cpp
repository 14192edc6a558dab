#include "model/group_room.h"

#include <algorithm>

#include "codes/stripes.h"
#include "library_fields.h"
#include "model/virtual_disks.h"

namespace vexorctl {

namespace {

constexpr std::uint64_t kFree = 255;  // LDID of a free block
constexpr std::uint64_t kSectorsOfKib = 2;

std::uint64_t DataIn(const Striping& striping, std::uint64_t block) {
    const std::uint64_t stripe = striping.stripe_kib * kSectorsOfKib;
    if (stripe == 0 || !hxcodes::CanBeMade(*striping.level, striping.disks, striping.legs))
        return 0;
    return hxcodes::DataSectors(*striping.level, striping.disks, striping.legs, stripe, block);
}

// The free sectors behind a block.
std::uint64_t FreeBehind(std::span<const DiskRun> runs, const DiskRun& block) {
    const auto found = std::ranges::find_if(runs, [&](const DiskRun& each) {
        return each.disk == block.disk && each.virtual_disk == kFree &&
               each.start == block.start + block.sectors;
    });
    return found == runs.end() ? 0 : found->sectors;
}

}  // namespace

std::optional<std::vector<DiskRun>> LoadRuns(Controller& controller, unsigned adapter) {
    using fields::Block_Info;
    std::vector<DiskRun> runs;
    const auto blocks = controller.ReadList(adapter, kBlockList);
    if (blocks.presence != Presence::kThere) return std::nullopt;
    for (const auto& [id, block] : blocks.items) {
        const auto disk = block[Block_Info::HDID];
        const auto owner = block[Block_Info::LDID];
        const auto start = block[Block_Info::StartLBA];
        const auto sectors = block[Block_Info::Size];
        if (!disk || !owner || !start || !sectors) return std::nullopt;
        runs.push_back({*disk, *owner, *start, *sectors});
    }
    return runs;
}

std::uint64_t MostInPlace(std::span<const DiskRun> runs, std::uint64_t virtual_disk,
                          const Striping& striping) {
    std::uint64_t longest = UINT64_MAX;
    for (const DiskRun& block : runs) {
        if (block.virtual_disk != virtual_disk) continue;
        longest = std::min(longest, block.sectors + FreeBehind(runs, block));
    }
    return longest == UINT64_MAX ? 0 : DataIn(striping, longest);
}

std::uint64_t InWholeStripes(const Striping& striping, std::uint64_t sectors) {
    const std::uint64_t stripe = striping.stripe_kib * kSectorsOfKib;
    if (stripe == 0 || !hxcodes::CanBeMade(*striping.level, striping.disks, striping.legs)) {
        return sectors;
    }
    return DataIn(striping, hxcodes::BlockSectors(*striping.level, striping.disks, striping.legs,
                                                  stripe, sectors));
}

}  // namespace vexorctl
