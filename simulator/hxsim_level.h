// RAID levels: what each is made of and how much of its disks holds data.
#ifndef HXSIM_LEVEL_H
#define HXSIM_LEVEL_H

#include <cstdint>

#include "hxraid.h"

namespace hxsim {

struct Level {
    HX_U16 mode;  // its bit in Adapter_Info::LogicalDriverMode
    HX_U8 code;
    HX_U8 leg_least;   // the fewest disks of a leg; of the whole where there are no legs
    HX_U8 leg_most;    // the most; 0 no limit
    HX_U8 leg_step;    // disks come in multiples of this
    HX_U8 copies;      // disks that hold the same
    HX_U8 leg_parity;  // disks of each leg that hold parity
    bool legs;         // is made of legs, two where the caller names no number
};

inline constexpr Level kLevels[] = {
    // mode, code, disks of a leg: least, most, step; copies, parity, legs
    {0x0001, 0x00, 1, 0, 1, 1, 0, false}, {0x0002, 0x01, 2, 2, 1, 2, 0, false},
    {0x0004, 0x10, 4, 0, 2, 2, 0, false}, {0x0010, 0x05, 3, 0, 1, 1, 1, false},
    {0x0020, 0x06, 3, 0, 1, 1, 2, false},  // one disk of data is enough to ask for
    {0x0040, 0x50, 3, 0, 1, 1, 1, true},  {0x0100, 0x60, 3, 0, 1, 1, 2, true},
};

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

/// How many disks' worth of data so many disks hold; 0 when the level cannot be made of them.
constexpr unsigned DataDisks(const Level& level, unsigned disks, unsigned asked_legs) {
    const unsigned legs = LegsOf(level, asked_legs);
    if (level.legs && legs < 2) return 0;
    if (disks % legs != 0) return 0;
    const unsigned leg = disks / legs;
    if (leg < level.leg_least || leg % level.leg_step != 0) return 0;
    if (level.leg_most != 0 && leg > level.leg_most) return 0;
    return legs * (leg / level.copies - level.leg_parity);
}

/// How many disks' worth of parity a sound virtual disk or disk group holds.
constexpr HX_U8 ParityDisks(const Level& level, unsigned asked_legs) {
    return static_cast<HX_U8>(LegsOf(level, asked_legs) * level.leg_parity);
}

/// A stripe is what of the data lies on one disk before it goes on with the next.
constexpr std::uint64_t SectorsOfStripe(HX_U16 kib) { return std::uint64_t{2} * kib; }

}  // namespace hxsim

#endif
