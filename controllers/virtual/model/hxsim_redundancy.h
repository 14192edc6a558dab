// What lost disks mean for virtual disks and disk groups, and how what is lost is made up for.
#pragma once

#include <bitset>

#include "model/hxsim_machine.h"

namespace hxsim {

/// Some of the positions of a virtual disk or a disk group.
using Positions = std::bitset<256>;

/// The state of an array without the positions that are lost; those from `width` on do not count.
HX_U8 StateOfArray(HX_U8 level, HX_U8 legs, HX_U8 width, const Positions& lost);

/// Whether the alarm sounds for a virtual disk in that state.
bool CausesAlarm(HX_U8 state);

/// Whether the level keeps anything twice, or parity.
bool IsRedundant(HX_U8 level);

/// The positions that a virtual disk has lost: without a block, on a disk that is not ready, or
/// with content that is not what it should be. With `target`, of what it is to become.
Positions LostPositions(const Adapter& adapter, HX_U16 virtual_disk, bool target = false);

/// The state that follows from a virtual disk's blocks and their disks: HxsimState.
HX_U8 StateOf(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// The state of a disk group: the worst of its virtual disks and, for one without, what its
/// disks make of it.
HX_U8 StateOf(const Adapter& adapter, const DiskGroup& group);

/// The Home row of a position; null when there is none.
Home* HomeOf(Adapter& adapter, Owner of, HX_U16 owner, HX_U8 position);
const Home* HomeOf(const Adapter& adapter, Owner of, HX_U16 owner, HX_U8 position);

/// The disk group that a disk serves, or will serve when what is written there is complete; null
/// when it serves none.
const DiskGroup* GroupOf(const Adapter& adapter, HX_U16 disk);

/// Whether a disk serves a virtual disk or a disk group.
bool IsConfigured(const Adapter& adapter, HX_U16 disk);

/// Whether a disk is ready and neither configured nor a spare.
bool IsFree(const Adapter& adapter, const Disk& disk);

/// Lets the alarm sound while a virtual disk is degraded or offline or an element of an enclosure
/// is critical, when the adapter has an alarm and it is on; else silences it. A muted alarm stays
/// silent until there is a new cause, or no cause any more.
void UpdateAlarm(Adapter& adapter, bool new_cause = false);

/// Draws the consequences of whatever has just changed, until nothing follows any more: blocks of
/// disks that are no longer ready fall out of date where the array can do without them, states are
/// computed and changes of state announced, activities that cannot go on end or pause, spares step
/// in, rebuilds and copybacks start, paused ones resume. Called after every change.
void Settle(Adapter& adapter, Time now);

}  // namespace hxsim
