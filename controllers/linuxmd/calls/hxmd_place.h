// Partitions for new members: made on disks that are proved free, and dropped again.
#pragma once

#include <cstdint>
#include <string>

#include "model/hxmd_machine.h"
#include "system/hxmd_proof.h"

namespace hxmd {

/// A partition made for a member that does not use it yet.
struct Place {
    std::string disk;  // kernel names
    std::string partition;
    Text number;  // of the disk
    Number disk_sectors;
    std::uint64_t start = 0;
    std::uint64_t sectors = 0;
    bool new_table = false;
};

/// Makes a partition of so many sectors in the disk's largest gap. On a refusal the disk is as it
/// was.
StatusCode MakePlace(const Machine& machine, const Disk& disk, std::uint64_t sectors, Place& place);

/// Takes a place back that no array uses.
void UndoPlace(const Place& place);

/// Removes the partition of a member that has left its array, and the table with the last one.
/// False when it is no partition for arrays, or is in use.
bool RemovePartition(const Disk& disk, const std::string& partition);

}  // namespace hxmd
