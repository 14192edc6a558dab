// The calls that create disk groups and change their name, level and disks.
//
// On refusal no function here changes the adapter or its parameters.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Creates a disk group from free disks (param.DGID is HX_NEW_ID), or changes the group param.DGID:
/// its name, unless that is empty, and by a migration its level and disks, when disks are given.
/// Sets param.DGID and param.Size, the space that the group will manage.
Status CreateOrModifyDiskGroup(Adapter& adapter, Time now, CreateOrModify_DG_Param& param);

/// Sets param.Size as CreateOrModifyDiskGroup would, ignoring the size asked for.
Status SizeDiskGroup(const Adapter& adapter, CreateOrModify_DG_Param& param);

}  // namespace hxsim
