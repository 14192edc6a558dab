// The number of failures that a virtual disk still survives, computed from its lost positions. Its
// state alone is not enough: a "degraded" RAID 10 survives failures in every other pair.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "conditions/hxc_answers.h"

namespace hxconditions {

struct Redundancy {
    std::vector<unsigned> lost;  // positions
    // How many more disks may fail, whichever they are; null when the positions or the level are
    // unknown.
    std::optional<unsigned> survives;
    bool is_offline = false;                // more positions are lost than the level survives
    std::vector<unsigned> needed;           // positions whose loss would lose data
    std::vector<unsigned> spare_positions;  // positions that may still fail, one at a time
};

/// `disks` may be empty when they could not be read: then only the states of the blocks count.
Redundancy RedundancyOf(const VirtualDisk& virtual_disk, const std::vector<Disk>& disks);

/// How many more of its disks may fail, whichever they are; null when not known.
std::optional<unsigned> SurvivesOf(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// What is left of it, in a word.
enum class Protection : std::uint8_t {
    kNone,       // the level has no redundancy
    kFull,       // nothing is lost
    kReduced,    // something is lost, and any one more disk may fail
    kExhausted,  // there is a disk whose failure would lose data
    kLost,       // data is lost already
};
std::string_view NameOf(Protection protection);
/// Null when not known.
std::optional<Protection> ProtectionOf(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// The leg or mirrored pair of each position; null of a level that has neither, and when the level
/// is unknown.
std::vector<std::optional<unsigned>> LegsOfMembers(const VirtualDisk& virtual_disk);

/// Whether the level has redundancy at all.
bool IsRedundant(unsigned level);

}  // namespace hxconditions
