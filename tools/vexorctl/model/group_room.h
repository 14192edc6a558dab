// How large a virtual disk on a disk group can become, computed from the blocks of its disks: the
// controller cannot be asked without acting.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "codes/level.h"
#include "model/ask_controller.h"

namespace vexorctl {

/// How the data of a virtual disk lie.
struct Striping {
    const hxcodes::LevelRow* level;
    unsigned disks;
    unsigned legs;
    std::uint64_t stripe_kib;
};

/// A run of sectors of a disk.
struct DiskRun {
    std::uint64_t disk;
    std::uint64_t virtual_disk;
    std::uint64_t start;
    std::uint64_t sectors;
};

/// The blocks of an adapter, the free ones among them; null when they are not all known.
std::optional<std::vector<DiskRun>> LoadRuns(Controller& controller, unsigned adapter);

/// The sectors to which the virtual disk can grow where it lies: into what is free behind it on
/// each of its disks.
std::uint64_t MostInPlace(std::span<const DiskRun> runs, std::uint64_t virtual_disk,
                          const Striping& striping);

/// The sectors that a virtual disk gets for which so many are asked: whole stripes.
std::uint64_t InWholeStripes(const Striping& striping, std::uint64_t sectors);

}  // namespace vexorctl
