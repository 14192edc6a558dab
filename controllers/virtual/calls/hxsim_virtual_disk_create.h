// The calls that create virtual disks and change those on disk groups.
//
// On refusal no function here changes the adapter or its parameters.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Creates a virtual disk without a disk group and starts its initialisation. Sets param.LDID and
/// param.Size.
Status CreateVirtualDisk(Adapter& adapter, Time now, Create_LD_Param& param);

/// Sets param.Size to the largest size that CreateVirtualDisk could give.
Status SizeVirtualDisk(const Adapter& adapter, Create_LD_Param& param);

/// Creates a virtual disk in a slot of a disk group (param.VDID is HX_NEW_ID), or changes the name
/// and the cache of an existing one or enlarges it. A new virtual disk takes param.Size, or for 0
/// the longest free run; an existing one keeps its name for an empty name, its size for 0, and
/// always its slot. Sets param.VDID and param.Size.
Status CreateOrModifyOnGroup(Adapter& adapter, Time now, CreateOrModify_VD_Param& param);

}  // namespace hxsim
