// The rows of background activities: which one an object has, and how far it is.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// The activity of an object; null when nothing goes on there. A migration that waits for a rebuild
/// of its virtual disk is not it: that is the rebuild.
Activity* ActivityOf(Adapter& adapter, Owner of, HX_U16 owner);
const Activity* ActivityOf(const Adapter& adapter, Owner of, HX_U16 owner);

/// The migration of an object, also one that waits for a rebuild; null when there is none.
Activity* MigrationOf(Adapter& adapter, Owner of, HX_U16 owner);
const Activity* MigrationOf(const Adapter& adapter, Owner of, HX_U16 owner);

/// Whether an activity keeps others from a virtual disk: its own, or one of its disk group.
bool IsBusy(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// Whether an activity keeps others from a disk group: its own, or one of its virtual disks.
bool IsBusy(const Adapter& adapter, const DiskGroup& group);

/// Sectors gone over by now, and percent of the whole, 0 to 100.
Sectors Done(const Activity& activity, Time now);
HX_U16 Percentage(const Activity& activity, Time now);

/// Whether there is an activity and it is of that kind (ActivityKind).
bool IsKind(const Activity* activity, ActivityKind kind);

}  // namespace hxsim
