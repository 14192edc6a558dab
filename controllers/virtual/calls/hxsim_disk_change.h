// What callers do to disks.
#pragma once

#include "hxraid.h"
#include "model/hxsim_machine.h"

namespace hxsim {

/// Each returns HX_SUCCESS, or refuses with the adapter as it was. Consequences are drawn by the
/// caller (Settle).
HX_U8 SetDisk(Adapter& adapter, Time now, HX_U16 id, const HD_Config& config);
HX_U8 WipeDisk(Adapter& adapter, Time now, HX_U16 id, bool force);
HX_U8 SetDiskState(Adapter& adapter, Time now, HX_U16 id, HX_U8 action);  // DiskAction
HX_U8 MakeGlobalSpare(Adapter& adapter, Time now, HX_U16 id);
HX_U8 MakeGroupSpare(Adapter& adapter, Time now, HX_U16 id, HX_U16 group);
HX_U8 FreeSpare(Adapter& adapter, Time now, HX_U16 id);

}  // namespace hxsim
