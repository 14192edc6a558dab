// Rebuilds: restore the content of lost blocks on the disks that have taken their place.
#pragma once

#include "rules/hxsim_settling.h"

namespace hxsim {

/// Whether a rebuild of the virtual disk may start: it has lost positions but still has all its
/// data, and no activity runs that a rebuild has to wait for.
bool MayRebuild(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// Whether the virtual disk has blocks on ready disks to rebuild; with `held`, counting those of an
/// aborted rebuild.
bool HasBlocksToRebuild(const Adapter& adapter, const VirtualDisk& virtual_disk, bool held);

/// Starts the rebuild of all degraded blocks on ready disks. A running check, fix or background
/// initialisation is aborted for it.
void StartRebuild(Adapter& adapter, Time now, HX_U16 virtual_disk);

/// The effect of a completed rebuild.
void FinishRebuild(Adapter& adapter, Time now, HX_U16 virtual_disk);

/// Whether spares step in and rebuilds start automatically for the virtual disk.
bool RebuildsByItself(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// Settling rule: starts the automatic rebuilds.
bool StartRebuilds(Settling& settling);

}  // namespace hxsim
