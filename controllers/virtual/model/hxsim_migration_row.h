// What the row of a running migration says of the virtual disks that it moves.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Whether the migration moves the virtual disk: its own migration, or one of its disk group.
bool Moves(const Activity& migration, const VirtualDisk& virtual_disk);

/// The sectors that each block of the virtual disk has when the migration has ended.
Sectors BlockAfter(const Activity& migration, const VirtualDisk& virtual_disk);

}  // namespace hxsim
