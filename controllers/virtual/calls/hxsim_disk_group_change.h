// Disk groups: set and deleted.
//
// Every function here that refuses leaves the adapter as it is.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Sets name and write cache, the latter on each of its disks.
Status SetDiskGroup(Adapter& adapter, Time now, HX_U16 id, const DG_Config& config);

/// Deletes a disk group and its virtual disks, with what goes on on them; its spares are free.
Status DeleteDiskGroup(Adapter& adapter, Time now, HX_U16 id);

}  // namespace hxsim
