// Damaged sectors and their replacement by spare sectors of the disk.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Inserts a run into the adapter's list in order; a run that starts at the same sector is
/// replaced.
void SetRemap(Adapter& adapter, const Remap& remap);

/// Remaps a damaged run that was read, with the events, whether or not Adapter::remaps lists it
/// already. When the disk has no spare sectors left, queues the event for that, changes nothing
/// else and returns false.
bool Reassign(Adapter& adapter, Time now, HX_U16 disk, Sectors lba, HX_U32 sectors);

/// Remaps the damaged runs that start in a part of a disk, as reading all of it does. Returns their
/// number.
HX_U32 RemapDamage(Adapter& adapter, Time now, HX_U16 disk, Sectors start, Sectors sectors);

}  // namespace hxsim
