// What the row of a running migration says about the virtual disks that it moves.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Whether the migration moves the virtual disk: its own migration, or one of its disk group.
bool Moves(const Activity& migration, const VirtualDisk& virtual_disk);

/// The size of each block of the virtual disk after the migration, in sectors.
Sectors BlockAfter(const Activity& migration, const VirtualDisk& virtual_disk);

}  // namespace hxsim
