// Takes a disk's contents away from the virtual disks that use it.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Frees all blocks of a disk; the positions that it served are lost, and activities that were
/// writing there fail. A foreign virtual disk is known only from its disks, so it is removed with
/// the last of them.
void DropContents(Adapter& adapter, Time now, HX_U16 disk);

}  // namespace hxsim
