// How much data a RAID level stores in blocks of a given size, in whole stripes.
#pragma once

#include <cstdint>

#include "codes/stripes.h"
#include "hxraid.h"
#include "model/hxsim_codes.h"

namespace hxsim {

/// A stripe is the data that lies on one disk before the next disk follows.
constexpr std::uint64_t SectorsOfStripe(HX_U16 kib) { return std::uint64_t{2} * kib; }

/// Sectors of data in whole stripes, when each disk provides a block of `block` sectors.
/// Precondition: the level can be made of so many disks.
constexpr std::uint64_t DataSectors(Level level, unsigned disks, unsigned legs, HX_U16 stripe_kib,
                                    std::uint64_t block) {
    return hxcodes::DataSectors(RowOf(level), disks, legs, SectorsOfStripe(stripe_kib), block);
}

/// Sectors that each disk provides for so much data: the fewest whole stripes for which DataSectors
/// returns at least `data`. Precondition: the disks can hold the data.
constexpr std::uint64_t BlockSectors(Level level, unsigned disks, unsigned legs, HX_U16 stripe_kib,
                                     std::uint64_t data) {
    return hxcodes::BlockSectors(RowOf(level), disks, legs, SectorsOfStripe(stripe_kib), data);
}

}  // namespace hxsim
