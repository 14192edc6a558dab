// Partition tables: the partitions that hold members of arrays.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "descriptor.h"

namespace hxmd {

/// A partition in a GPT.
struct Entry {
    std::size_t number = 0;   // from 1 on
    std::uint64_t start = 0;  // sectors
    std::uint64_t sectors = 0;
    bool raid = false;  // of the type "Linux RAID"
};

/// The partitions of a disk with a sound GPT; none for any other content. `name` is the disk's.
std::optional<std::vector<Entry>> ReadTable(const Descriptor& disk, const std::string& name);

enum class Table : std::uint8_t { kNew, kPresent };

/// Adds a partition of the type "Linux RAID" and tells the kernel. Returns its number.
std::optional<std::size_t> AddPartition(const Descriptor& disk, const std::string& name,
                                        Table table, std::uint64_t start, std::uint64_t sectors);

/// Removes the partition that starts there, if it is of the type "Linux RAID", and tells the
/// kernel.
bool DropPartition(const Descriptor& disk, const std::string& name, std::uint64_t start);

}  // namespace hxmd
