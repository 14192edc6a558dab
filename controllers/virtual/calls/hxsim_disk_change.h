// The calls that change disks.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Each returns Status::kSuccess, or a refusal that leaves the adapter unchanged. The caller calls
/// Settle afterwards.
Status SetDisk(Adapter& adapter, Time now, HX_U16 id, const HD_Config& config);
Status WipeDisk(Adapter& adapter, Time now, HX_U16 id, bool force);
Status SetDiskState(Adapter& adapter, Time now, HX_U16 id, HX_U8 action);  // DiskAction
Status MakeGlobalSpare(Adapter& adapter, Time now, HX_U16 id);
Status MakeGroupSpare(Adapter& adapter, Time now, HX_U16 id, HX_U16 group);
Status FreeSpare(Adapter& adapter, Time now, HX_U16 id);

}  // namespace hxsim
