// What a virtual disk still survives, computed from its lost positions instead of taken from the
// word for its state: RAID 10 says "degraded" while disks of every other pair may still fail.
#pragma once

#include <optional>
#include <vector>

#include "conditions/hxc_answers.h"

namespace hxconditions {

struct Redundancy {
    std::vector<unsigned> lost;  // positions
    // How many more any disks may fail; null where the positions are not known or the level is not.
    std::optional<unsigned> survives;
    bool is_offline = false;                // more is lost than the level makes up for
    std::vector<unsigned> needed;           // positions whose loss nothing makes up for
    std::vector<unsigned> spare_positions;  // those that may still fail, one at a time
};

/// Disks may be empty where they could not be read: then the blocks' own states count alone.
Redundancy RedundancyOf(const VirtualDisk& virtual_disk, const std::vector<Disk>& disks);

/// How many more disks of it may fail, whichever they are; null where that was not seen.
std::optional<unsigned> SurvivesOf(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// Whether the level has redundancy at all.
bool IsRedundant(unsigned level);

}  // namespace hxconditions
