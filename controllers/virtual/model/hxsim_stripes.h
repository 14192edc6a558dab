// How much data a RAID level keeps on blocks of a size, in whole stripes.
#pragma once

#include <cstdint>

#include "hxraid.h"
#include "model/hxsim_codes.h"

namespace hxsim {

/// A stripe is what of the data lies on one disk before it goes on with the next.
constexpr std::uint64_t SectorsOfStripe(HX_U16 kib) { return std::uint64_t{2} * kib; }

/// Sectors of data in whole stripes, when each disk gives a block of so many sectors. The level
/// can be made of the disks.
constexpr std::uint64_t DataSectors(Level level, unsigned disks, unsigned legs, HX_U16 stripe_kib,
                                    std::uint64_t block) {
    const LevelRow& row = RowOf(level);
    const std::uint64_t stripe = SectorsOfStripe(stripe_kib);
    const unsigned data_disks = disks - ParityDisks(row, legs);  // copies included
    return data_disks * (block / stripe) / row.copies * stripe;
}

/// Sectors that each disk has to give for so much data: the fewest whole stripes of which
/// DataSectors makes no less. The data is no more than what so many disks can hold.
constexpr std::uint64_t BlockSectors(Level level, unsigned disks, unsigned legs, HX_U16 stripe_kib,
                                     std::uint64_t data) {
    const LevelRow& row = RowOf(level);
    const std::uint64_t stripe = SectorsOfStripe(stripe_kib);
    const unsigned data_disks = disks - ParityDisks(row, legs);
    const std::uint64_t stripes = data / stripe + (data % stripe != 0);
    return (stripes * row.copies + data_disks - 1) / data_disks * stripe;
}

}  // namespace hxsim
