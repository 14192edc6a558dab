// Damaged sectors and the good ones that disks put in their place.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Puts a run where it belongs among the adapter's; one that begins at the same sector gives way.
void SetRemap(Adapter& adapter, const Remap& remap);

/// Puts good sectors in the place of a damaged run that somebody has met, with its events; whether
/// it is in Adapter::remaps as damaged already makes no difference. Returns false when the disk has
/// no sectors left for it, and says so with an event; nothing else has changed then.
bool Reassign(Adapter& adapter, Time now, HX_U16 disk, Sectors lba, HX_U32 sectors);

/// Reassigns the damaged runs that begin in a part of a disk, as whoever reads all of it does.
/// Returns how many it was.
HX_U32 RemapDamage(Adapter& adapter, Time now, HX_U16 disk, Sectors start, Sectors sectors);

}  // namespace hxsim
