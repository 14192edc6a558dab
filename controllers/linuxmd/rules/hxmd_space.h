// How much of a disk a new member may take.
#pragma once

#include <cstdint>

#include "model/hxmd_machine.h"

namespace hxmd {

/// What a partition's beginning and end are multiples of, in sectors: 1 MiB.
inline constexpr std::uint64_t kAlignment = 2048;

struct Gap {
    std::uint64_t start = 0;  // sectors
    std::uint64_t sectors = 0;
};

/// The largest aligned gap beside the disk's partitions and its two partition tables; none: 0
/// sectors.
Gap LargestGap(const Disk& disk);

/// The sectors before a new member's content, for its superblock and a later growth.
std::uint64_t DataOffset(const Gap& gap);

}  // namespace hxmd
