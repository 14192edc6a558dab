// Virtual disks: made, and changed on their disk groups.
//
// Every function here that refuses leaves the adapter and what it was given as they are.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Makes a virtual disk on disks of its own and starts its initialisation. Sets param.LDID to its
/// ID and param.Size to its size.
Status CreateVirtualDisk(Adapter& adapter, Time now, Create_LD_Param& param);

/// Sets param.Size to the most that CreateVirtualDisk could give.
Status SizeVirtualDisk(const Adapter& adapter, Create_LD_Param& param);

/// Makes the virtual disk param.VDID (HX_NEW_ID) in a slot of a disk group, or changes its name,
/// its cache and, upwards, its size. A new one takes param.Size, or the longest run that is left;
/// one that is there keeps its name for an empty one, its size for 0, and its slot. Sets
/// param.VDID and param.Size.
Status CreateOrModifyOnGroup(Adapter& adapter, Time now, CreateOrModify_VD_Param& param);

}  // namespace hxsim
