// What lost disks mean for virtual disks and disk groups, and how what is lost is made up for.
#ifndef HXSIM_REDUNDANCY_H
#define HXSIM_REDUNDANCY_H

#include "hxsim_machine.h"

namespace hxsim {

/// The state that follows from a virtual disk's blocks and their disks: HxsimState.
HX_U8 StateOf(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// The state of a disk group: the worst of its virtual disks and, for one without, what its
/// disks make of it.
HX_U8 StateOf(const Adapter& adapter, const DiskGroup& group);

/// The Home row of a position; null when there is none.
Home* HomeOf(Adapter& adapter, Owner of, HX_U16 owner, HX_U8 position);
const Home* HomeOf(const Adapter& adapter, Owner of, HX_U16 owner, HX_U8 position);

/// The disk group that a disk serves; null when it serves none.
const DiskGroup* GroupOf(const Adapter& adapter, HX_U16 disk);

/// Whether a disk serves a virtual disk or a disk group.
bool IsConfigured(const Adapter& adapter, HX_U16 disk);

/// Whether a disk is ready and neither configured nor a spare.
bool IsFree(const Adapter& adapter, const Disk& disk);

/// Draws the consequences of whatever has just changed, until nothing follows any more: blocks of
/// disks that are no longer ready fall out of date where the array can do without them, states are
/// computed and changes of state announced, activities that cannot go on end or pause, spares step
/// in, rebuilds and copybacks start, paused ones resume. Called after every change.
void Settle(Adapter& adapter, Time now);

}  // namespace hxsim

#endif
