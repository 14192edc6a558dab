// RAID levels: the number of disks of each, and how many of them hold data.
#pragma once

#include <algorithm>
#include <array>

#include "codes/named.h"

namespace hxcodes {

/// RaidMode. The codes are the interface's.
enum class Level : HX_U8 {
    kRaid0 = 0x00,
    kRaid1 = 0x01,
    kRaid5 = 0x05,
    kRaid6 = 0x06,
    kRaid10 = 0x10,
    kRaid1E = 0x11,
    kRaid50 = 0x50,
    kRaid60 = 0x60,
};

/// The rule for the number of disks in a leg, besides its limits.
enum class Disks : HX_U8 { kAny, kEven, kOdd };

/// The disks among which redundancy is spread.
enum class Spread : HX_U8 {
    kLegs,   // all disks of a leg, with parity if the level has any
    kPairs,  // two disks with the same content
    kRing,   // neighbours: each disk shares a copy with the next one
};

struct LevelRow {
    Level code;
    std::string_view name;
    std::string_view number;  // for people: "RAID 1E"
    HX_U16 mode;              // its bit in LogicalDriverMode of Adapter_Info
    HX_U8 leg_least;          // the fewest disks of a leg, or of the array without legs
    HX_U8 leg_most;           // the most; 0: no limit
    Disks leg_disks;
    HX_U8 copies;      // copies of all data, each on another disk
    HX_U8 leg_parity;  // disks' worth of parity in each leg
    Spread spread;
    bool legs;  // has legs; two unless the caller names a number
};
inline constexpr LevelRow kLevels[] = {
    // disks of a leg: least, most, which; copies, parity
    {Level::kRaid0, "raid0", "0", 0x0001, 1, 0, Disks::kAny, 1, 0, Spread::kLegs, false},
    {Level::kRaid1, "raid1", "1", 0x0002, 2, 2, Disks::kAny, 2, 0, Spread::kPairs, false},
    {Level::kRaid5, "raid5", "5", 0x0010, 3, 0, Disks::kAny, 1, 1, Spread::kLegs, false},
    // Three disks suffice: one of data and two of parity.
    {Level::kRaid6, "raid6", "6", 0x0020, 3, 0, Disks::kAny, 1, 2, Spread::kLegs, false},
    {Level::kRaid10, "raid10", "10", 0x0004, 4, 0, Disks::kEven, 2, 0, Spread::kPairs, false},
    {Level::kRaid1E, "raid1e", "1e", 0x0008, 3, 0, Disks::kOdd, 2, 0, Spread::kRing, false},
    {Level::kRaid50, "raid50", "50", 0x0040, 3, 0, Disks::kAny, 1, 1, Spread::kLegs, true},
    {Level::kRaid60, "raid60", "60", 0x0100, 3, 0, Disks::kAny, 1, 2, Spread::kLegs, true},
};
static_assert(IsTable(kLevels));
constexpr const auto& TableOf(Level) { return kLevels; }

inline constexpr auto kLevelNames = NamesFrom(kLevels);

/// The levels in the order that people expect: 1, 1e, 5, ....
inline constexpr auto kLevelNumbers = [] {
    std::array<std::string_view, std::size(kLevels)> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = kLevels[i].number;
    std::ranges::sort(numbers, {}, [](std::string_view number) {
        unsigned value = 0;
        for (const char each : number) {
            if (each <= '9') value = 10 * value + static_cast<unsigned>(each - '0');
        }
        return 2 * value + (number.back() > '9' ? 1U : 0U);
    });
    return numbers;
}();

/// LogicalDriverMode of Adapter_Info, bit by bit.
inline constexpr auto kLevelBits = NamesBy<kLevels, &LevelRow::mode>();
static_assert(IsTableOfBits(kLevelBits));

/// How many disks each leg, pair or pair of neighbours can lose.
constexpr unsigned RedundancyOf(const LevelRow& level) {
    return level.copies - 1U + level.leg_parity;
}

/// The number of legs; always 1 where the level has none.
constexpr unsigned LegsOf(const LevelRow& level, unsigned asked) {
    if (!level.legs) return 1;
    return asked == 0 ? 2 : asked;
}

/// Whether the level can be made of this number of disks and legs.
constexpr bool CanBeMade(const LevelRow& level, unsigned disks, unsigned asked_legs) {
    const unsigned legs = LegsOf(level, asked_legs);
    if (level.legs && legs < 2) return false;
    if (disks % legs != 0) return false;
    const unsigned leg = disks / legs;
    if (leg < level.leg_least || (level.leg_most != 0 && leg > level.leg_most)) return false;
    if (level.leg_disks == Disks::kAny) return true;
    return (leg % 2 == 0) == (level.leg_disks == Disks::kEven);
}

/// How many disks' worth of parity a sound virtual disk or disk group holds.
constexpr unsigned ParityDisks(const LevelRow& level, unsigned asked_legs) {
    return LegsOf(level, asked_legs) * level.leg_parity;
}

constexpr bool IsConsistent(const LevelRow& level) {
    const bool has_copies = level.spread != Spread::kLegs;
    if (has_copies != (level.copies == 2) || level.copies > 2) return false;
    if (has_copies && level.leg_parity != 0) return false;
    if (level.leg_least <= level.leg_parity || level.leg_least % level.copies != 0) {
        if (level.spread != Spread::kRing) return false;
    }
    if (level.leg_most != 0 && level.leg_most < level.leg_least) return false;
    return level.name.substr(4) == level.number;
}
static_assert(std::ranges::all_of(kLevels, IsConsistent),
              "disks suffice for copies and parity; names are raid and a number");

}  // namespace hxcodes
