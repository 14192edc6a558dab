// The records of disk groups.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// The group's record: what HX_DG_GetInfo says of it.
DG_Info DescribeDiskGroup(const Adapter& adapter, const DiskGroup& group);

}  // namespace hxsim
