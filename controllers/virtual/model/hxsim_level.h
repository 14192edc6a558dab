// RAID levels: what each is made of and how much of its disks holds data.
#pragma once

#include <cstdint>

#include "hxraid.h"

namespace hxsim {

/// How many disks make a leg, beyond the fewest and the most.
enum class Disks : HX_U8 { kAny, kEven, kOdd };

struct Level {
    HX_U16 mode;  // its bit in Adapter_Info::LogicalDriverMode
    HX_U8 code;
    HX_U8 leg_least;  // the fewest disks of a leg; of the whole where there are no legs
    HX_U8 leg_most;   // the most; 0 no limit
    Disks leg_disks;
    HX_U8 copies;      // disks that hold the same
    HX_U8 leg_parity;  // disks of each leg that hold parity
    bool legs;         // is made of legs, two where the caller names no number
};

inline constexpr Level kLevels[] = {
    // mode, code, disks of a leg: least, most, which; copies, parity, legs
    {0x0001, 0x00, 1, 0, Disks::kAny, 1, 0, false},
    {0x0002, 0x01, 2, 2, Disks::kAny, 2, 0, false},
    {0x0004, 0x10, 4, 0, Disks::kEven, 2, 0, false},
    {0x0008, 0x11, 3, 0, Disks::kOdd, 2, 0, false},  // each disk shares a copy with the next one
    {0x0010, 0x05, 3, 0, Disks::kAny, 1, 1, false},
    {0x0020, 0x06, 3, 0, Disks::kAny, 1, 2, false},  // one disk of data is enough to ask for
    {0x0040, 0x50, 3, 0, Disks::kAny, 1, 1, true},
    {0x0100, 0x60, 3, 0, Disks::kAny, 1, 2, true},
};

/// The level of a code; null for a code that no level has.
constexpr const Level* FindLevel(HX_U8 code) {
    for (const Level& level : kLevels) {
        if (level.code == code) return &level;
    }
    return nullptr;
}

/// The number of legs: 1 where the level has none, whatever is asked for.
constexpr unsigned LegsOf(const Level& level, unsigned asked) {
    if (!level.legs) return 1;
    return asked == 0 ? 2 : asked;
}

/// Whether the level can be made of so many disks in so many legs.
constexpr bool CanBeMade(const Level& level, unsigned disks, unsigned asked_legs) {
    const unsigned legs = LegsOf(level, asked_legs);
    if (level.legs && legs < 2) return false;
    if (disks % legs != 0) return false;
    const unsigned leg = disks / legs;
    if (leg < level.leg_least || (level.leg_most != 0 && leg > level.leg_most)) return false;
    if (level.leg_disks == Disks::kAny) return true;
    return (leg % 2 == 0) == (level.leg_disks == Disks::kEven);
}

/// How many disks' worth of parity a sound virtual disk or disk group holds.
constexpr unsigned ParityDisks(const Level& level, unsigned asked_legs) {
    return LegsOf(level, asked_legs) * level.leg_parity;
}

/// A stripe is what of the data lies on one disk before it goes on with the next.
constexpr std::uint64_t SectorsOfStripe(HX_U16 kib) { return std::uint64_t{2} * kib; }

/// Sectors of data in whole stripes, when each disk gives a block of so many sectors. The level
/// can be made of the disks.
constexpr std::uint64_t DataSectors(const Level& level, unsigned disks, unsigned legs,
                                    HX_U16 stripe_kib, std::uint64_t block) {
    const std::uint64_t stripe = SectorsOfStripe(stripe_kib);
    const unsigned data_disks = disks - ParityDisks(level, legs);  // copies included
    return data_disks * (block / stripe) / level.copies * stripe;
}

/// Sectors that each disk has to give for so much data: the fewest whole stripes of which
/// DataSectors makes no less. The data is no more than what so many disks can hold.
constexpr std::uint64_t BlockSectors(const Level& level, unsigned disks, unsigned legs,
                                     HX_U16 stripe_kib, std::uint64_t data) {
    const std::uint64_t stripe = SectorsOfStripe(stripe_kib);
    const unsigned data_disks = disks - ParityDisks(level, legs);
    const std::uint64_t stripes = data / stripe + (data % stripe != 0);
    return (stripes * level.copies + data_disks - 1) / data_disks * stripe;
}

}  // namespace hxsim
