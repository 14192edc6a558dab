// The calls that configure and delete disk groups.
//
// On refusal no function here changes the adapter.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Sets the name, and the write cache of each of its disks.
Status SetDiskGroup(Adapter& adapter, Time now, HX_U16 id, const DG_Config& config);

/// Deletes a disk group with its virtual disks and their activities, and frees its spares.
Status DeleteDiskGroup(Adapter& adapter, Time now, HX_U16 id);

}  // namespace hxsim
