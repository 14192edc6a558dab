// Fills the records of disk groups. Every function writes every byte of its record.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

void Describe(const Adapter& adapter, const DiskGroup& group, Time now, DG_Info& info);

/// The settings belong to the group; its disks have them as long as they serve it.
void Describe(const Adapter& adapter, const DiskGroup& group, Time now, DG_Config& config);

}  // namespace hxsim
