// Which level quick creation gives a virtual disk.
#pragma once

#include "hxraid.h"

/// A RAID level and the number of disks that it needs.
struct RaidSupport {
    HX_U8 raidmode;    // level code of the controller
    HX_U8 minhdcount;  // the fewest disks that it takes
    HX_BOOLEAN isEvenNum;
    HX_BOOLEAN isOddNum;
    HX_BOOLEAN isExactNum;  // never more than minhdcount
};

struct RaidLevel {
    HX_U16 bit;  // of LogicalDriverMode: the adapter offers the level
    RaidSupport support;
};

inline constexpr HX_U8 kQuickPlainLevel = 0x00;
inline constexpr HX_U8 kQuickRaid60 = 0x60;

// The best level first. RAID 1 takes the first two disks and leaves the others; RAID 6 is offered
// from three disks on.
inline constexpr RaidLevel kQuickLevels[] = {
    // bit, {raidmode, minhdcount, isEvenNum, isOddNum, isExactNum}
    {0x0100, {kQuickRaid60, 6, 1, 0, 0}},      // RAID 60
    {0x0040, {0x50, 6, 1, 0, 0}},              // RAID 50
    {0x0004, {0x10, 4, 1, 0, 0}},              // RAID 10
    {0x0020, {0x06, 3, 0, 0, 0}},              // RAID 6
    {0x0008, {0x11, 3, 0, 1, 0}},              // the level of odd numbers
    {0x0010, {0x05, 3, 0, 0, 0}},              // RAID 5
    {0x0002, {0x01, 2, 0, 0, 1}},              // RAID 1
    {0x0001, {kQuickPlainLevel, 1, 0, 0, 0}},  // RAID 0
};

constexpr bool CanBeMadeOf(const RaidSupport& level, HX_U8 disks) {
    if (disks < level.minhdcount) return false;
    if (level.isExactNum) return true;
    const bool odd = disks % 2 != 0;
    return !(level.isEvenNum && odd) && !(level.isOddNum && !odd);
}

/// The best of the levels that the adapter offers with the bits of its LogicalDriverMode, for so
/// many disks; reduces their number where the level takes fewer.
constexpr HX_U8 QuickLevel(HX_U16 offered, HX_U8& disks) {
    for (const auto& [bit, support] : kQuickLevels) {
        if ((offered & bit) == 0 || !CanBeMadeOf(support, disks)) continue;
        if (support.isExactNum) disks = support.minhdcount;
        return support.raidmode;
    }
    return kQuickPlainLevel;
}

// Bits of a disk's Status, each of which keeps it from being used for a new virtual disk.
inline constexpr HX_U8 kQuickNotFree = 0x04 | 0x08 | 0x40 | 0x80;
