// Disk groups: made, and changed in name, level and disks.
//
// Every function here that refuses leaves the adapter and what it was given as they are.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Makes the disk group param.DGID (HX_NEW_ID) of free disks, or changes one: its name, unless that
/// is empty, and its level and disks (none named: as they are), which is a migration. Sets
/// param.DGID and param.Size, the space that the group manages then.
Status CreateOrModifyDiskGroup(Adapter& adapter, Time now, CreateOrModify_DG_Param& param);

/// Sets param.Size as CreateOrModifyDiskGroup would, whatever size is asked for.
Status SizeDiskGroup(const Adapter& adapter, CreateOrModify_DG_Param& param);

}  // namespace hxsim
