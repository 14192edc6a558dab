// What a disk holds for virtual disks, and what taking it off the disk does to them.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Takes everything off a disk that it serves: its blocks become free, and the positions that lay
/// on it are lost. What was writing them fails. A virtual disk of another controller, which only
/// its disks know of, goes with the last of them.
void DropContents(Adapter& adapter, Time now, HX_U16 disk);

}  // namespace hxsim
