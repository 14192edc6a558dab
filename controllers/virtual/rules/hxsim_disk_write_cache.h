// The write cache of a disk.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Switches a disk's write cache on or off; queues an event when that changes it.
void SetWriteCache(Adapter& adapter, Time now, HX_U16 id, bool on);

}  // namespace hxsim
