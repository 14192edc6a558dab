// Hot spares: when a spare steps in, for which position, and when it becomes a spare again.
#pragma once

#include "rules/hxsim_settling.h"

namespace hxsim {

/// Puts a disk that can serve into a position. The position's old blocks are freed; the new blocks
/// are out of date (DEGRADED) until they are rebuilt.
void PutInto(Adapter& adapter, Time now, const VirtualDisk& virtual_disk, HX_U8 position,
             HX_U16 disk);
void PutInto(Adapter& adapter, Time now, const DiskGroup& group, HX_U8 position, HX_U16 disk);

/// Settling rule: puts disks into lost positions. Each position gets the first of these disks that
/// can serve: its home disk, a disk that already stands in for the same home elsewhere, the
/// smallest spare of the disk group, the smallest global spare.
bool ReplaceLostDisks(Settling& settling);

/// Reports losses for which there are spares but none that is large enough.
void TellOfSmallSpares(Settling& settling);

/// Makes a stand-in disk that serves nothing any more a spare again, of its former kind. Returns
/// whether it did.
bool ReturnSpare(Adapter& adapter, Time now, Disk& disk);

/// Settling rule: ReturnSpare for every disk.
bool ReturnSpares(Settling& settling);

}  // namespace hxsim
