// Repairs: disks that step in for lost ones, rebuilds onto them, and the way back home.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// The Home row of a virtual disk's position: its own, or that of its disk group; null when there
/// is none.
Home* HomeOf(Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position);

/// Whether a position needs another disk: it has no block, or its disk is not ready.
bool NeedsDisk(const Adapter& adapter, const VirtualDisk& virtual_disk, HX_U8 position);
bool NeedsDisk(const Adapter& adapter, const Home& home);

/// Sectors that a disk must have free in one run to serve a position of a virtual disk, or in all
/// to serve a disk group.
Sectors SectorsNeeded(const Adapter& adapter, const VirtualDisk& virtual_disk);
Sectors SectorsNeeded(const Adapter& adapter, const DiskGroup& group);

/// Why a disk cannot serve a position of a virtual disk that lies directly on its disks, or of a
/// disk group; HX_SUCCESS when it can. Spares can.
HX_U8 CanServe(const Adapter& adapter, const VirtualDisk& virtual_disk, const Disk& disk);
HX_U8 CanServe(const Adapter& adapter, const DiskGroup& group, const Disk& disk);

/// Puts a disk that can serve into a position. What lay elsewhere for that position is given back;
/// the new blocks are out of date (DEGRADED) until they are rebuilt.
void PutInto(Adapter& adapter, Time now, const VirtualDisk& virtual_disk, HX_U8 position,
             HX_U16 disk);
void PutInto(Adapter& adapter, Time now, const DiskGroup& group, HX_U8 position, HX_U16 disk);

/// Finds a disk for a lost position: its home, one that has stepped in for the same home, a spare
/// of the disk group, a global spare. Null when there is none.
const Disk* FindReplacement(const Adapter& adapter, const VirtualDisk& virtual_disk,
                            HX_U8 position);
const Disk* FindReplacement(const Adapter& adapter, const DiskGroup& group, HX_U8 position);

/// The largest spare for a disk group (kNoId: for none) that is ready; null when there is none.
const Disk* LargestSpare(const Adapter& adapter, HX_U16 group);

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

/// Tells of a disk that is back in its place and too small for what belongs there, when that could
/// return otherwise.
void TellOfSmallHome(Adapter& adapter, Time now, HX_U16 id);

/// Starts the copyback of whatever can return home now; whether anything could.
bool StartCopyback(Adapter& adapter, Time now, const VirtualDisk& virtual_disk);
bool StartCopyback(Adapter& adapter, Time now, const DiskGroup& group);

/// The effect of a copyback that is complete: what was written becomes what serves.
void FinishCopyback(Adapter& adapter, const Activity& copyback);

/// Gives back what a copyback has written. With `settle_down`, the positions belong from now on
/// where they are.
void DropCopyback(Adapter& adapter, const Activity& copyback, bool settle_down);

/// Makes a disk that had stepped in and serves nothing any more what it was before. Returns whether
/// it did.
bool ReturnSpare(Adapter& adapter, Time now, Disk& disk);

}  // namespace hxsim
