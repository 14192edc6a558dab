// How much data a RAID level stores in blocks of a given size, in whole stripes. A stripe is the
// data that lies on one disk before the next disk follows.
#pragma once

#include <cstdint>

#include "codes/level.h"

namespace hxcodes {

/// Sectors of data in whole stripes, when each disk provides a block of `block` sectors.
/// Precondition: the level can be made of so many disks, and `stripe`, in sectors, is not 0.
constexpr std::uint64_t DataSectors(const LevelRow& level, unsigned disks, unsigned legs,
                                    std::uint64_t stripe, std::uint64_t block) {
    const unsigned data_disks = disks - ParityDisks(level, legs);  // copies included
    return data_disks * (block / stripe) / level.copies * stripe;
}

/// Sectors that each disk provides for so much data: the fewest whole stripes for which DataSectors
/// returns at least `data`. Precondition: the disks can hold the data.
constexpr std::uint64_t BlockSectors(const LevelRow& level, unsigned disks, unsigned legs,
                                     std::uint64_t stripe, std::uint64_t data) {
    const unsigned data_disks = disks - ParityDisks(level, legs);
    const std::uint64_t stripes = data / stripe + (data % stripe != 0);
    return (stripes * level.copies + data_disks - 1) / data_disks * stripe;
}

}  // namespace hxcodes
