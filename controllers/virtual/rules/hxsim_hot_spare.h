// Hot spares: when one steps in, for which position, and when it is a spare again.
#pragma once

#include "rules/hxsim_settling.h"

namespace hxsim {

/// Puts a disk that can serve into a position. What lay elsewhere for that position is given back;
/// the new blocks are out of date (DEGRADED) until they are rebuilt.
void PutInto(Adapter& adapter, Time now, const VirtualDisk& virtual_disk, HX_U8 position,
             HX_U16 disk);
void PutInto(Adapter& adapter, Time now, const DiskGroup& group, HX_U8 position, HX_U16 disk);

/// Settling rule: puts disks into lost positions. Each gets the first of these that can serve: the
/// disk that the position belongs on, one that has stepped in for the same disk elsewhere, the
/// smallest spare of the disk group, the smallest global spare.
bool ReplaceLostDisks(Settling& settling);

/// Announces losses for which there is a spare, but none that is large enough.
void TellOfSmallSpares(Settling& settling);

/// Makes a disk that had stepped in and serves nothing any more what it was before. Returns whether
/// it did.
bool ReturnSpare(Adapter& adapter, Time now, Disk& disk);

/// Settling rule: ReturnSpare for every disk.
bool ReturnSpares(Settling& settling);

}  // namespace hxsim
