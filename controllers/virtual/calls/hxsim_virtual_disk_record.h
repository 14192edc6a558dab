// Fills the records of virtual disks. Every function writes every byte of its record.
#pragma once

#include <cstddef>
#include <vector>

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The blocks of every virtual disk by position, found in one pass for all records of a list.
class BlocksByPosition {
public:
    /// The block's ID; kNoId when the position has none.
    HX_U16 At(const Adapter& adapter, HX_U16 virtual_disk, std::size_t position);

private:
    std::vector<HX_U16> ids_;
};

void Describe(const Adapter& adapter, const VirtualDisk& virtual_disk, BlocksByPosition& blocks,
              LD_Info& info);
void Describe(const Adapter& adapter, const VirtualDisk& virtual_disk, Time now, LD_Status& status);
void Describe(const Adapter& adapter, const VirtualDisk& virtual_disk, Time now, LD_Config& config);

}  // namespace hxsim
