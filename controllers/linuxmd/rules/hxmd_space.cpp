// Gaps between partitions.
#include "rules/hxmd_space.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace hxmd {
namespace {

constexpr std::uint64_t kGibibyteSectors = std::uint64_t{1} << 21;  // sectors

}  // namespace

Gap LargestGap(const Disk& disk) {
    const std::uint64_t all = disk.sectors.value_or(0) / kAlignment * kAlignment;
    if (all <= 2 * kAlignment) return {};
    const std::uint64_t end = all - kAlignment;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> used;
    for (const Partition& partition : disk.partitions) {
        if (!partition.start || !partition.sectors) return {};
        used.emplace_back(*partition.start, *partition.sectors);
    }
    used.emplace_back(end, 0);
    std::ranges::sort(used);
    Gap largest;
    std::uint64_t from = kAlignment;
    for (const auto& [start, sectors] : used) {
        const std::uint64_t to = std::min(start, end) / kAlignment * kAlignment;
        if (to > from && to - from > largest.sectors) largest = {from, to - from};
        const std::uint64_t behind = std::min(start, end) + std::min(sectors, end);
        from = std::max(from, (behind + kAlignment - 1) / kAlignment * kAlignment);
    }
    return largest;
}

std::uint64_t DataOffset(const Gap& gap) {
    constexpr std::uint64_t kSmall = kAlignment;
    constexpr std::uint64_t kRoomy = 64 * kAlignment;
    return gap.sectors < 8 * kGibibyteSectors ? kSmall : kRoomy;
}

}  // namespace hxmd
