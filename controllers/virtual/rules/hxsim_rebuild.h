// Rebuilds: the content of lost blocks is made again on the disks that have taken their place.
#pragma once

#include "rules/hxsim_settling.h"

namespace hxsim {

/// Whether a rebuild of the virtual disk may start: something is lost, not too much, and nothing
/// goes on that a rebuild has to wait for.
bool MayRebuild(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// Whether the virtual disk has blocks on ready disks to rebuild; with `held`, counting those of an
/// aborted rebuild.
bool HasBlocksToRebuild(const Adapter& adapter, const VirtualDisk& virtual_disk, bool held);

/// Starts the rebuild of all those blocks. A check, fix or background initialisation ends for it.
void StartRebuild(Adapter& adapter, Time now, HX_U16 virtual_disk);

/// The effect of a rebuild that is complete.
void FinishRebuild(Adapter& adapter, Time now, HX_U16 virtual_disk);

/// Whether disks step in for the virtual disk, and rebuilds start, without being asked for.
bool RebuildsByItself(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// Settling rule: starts the rebuilds that nobody has to ask for.
bool StartRebuilds(Settling& settling);

}  // namespace hxsim
