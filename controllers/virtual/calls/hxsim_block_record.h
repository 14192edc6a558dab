// Fills the records of blocks. Every function writes every byte of its record.
#pragma once

#include <cstddef>
#include <vector>

#include "hxraid.h"
#include "model/hxsim_disk_role.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// A block of the disk.
void Describe(const Disk& disk, const DiskRole& role, const Block& block, Block_Info& info);

/// The IDs of the blocks of every disk, found in one pass for all records of a list.
class BlocksByDisk {
public:
    explicit BlocksByDisk(const Adapter& adapter);
    /// The block IDs of the disk at that index of the adapter's list, at most as many as a record
    /// holds.
    const std::vector<HX_U16>& At(std::size_t place) const { return ids_[place]; }

private:
    std::vector<std::vector<HX_U16>> ids_;
};

void Describe(const Disk& disk, const std::vector<HX_U16>& blocks, HD_Block_Info& record);

}  // namespace hxsim
