// The rows of background activities: finds the activity of an object and computes its progress.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// The activity that runs on an object; null when there is none. While a migration waits for a
/// rebuild of its virtual disk, this is the rebuild.
Activity* ActivityOf(Adapter& adapter, Owner of, HX_U16 owner);
const Activity* ActivityOf(const Adapter& adapter, Owner of, HX_U16 owner);

/// The migration of an object, also while it waits for a rebuild; null when there is none.
Activity* MigrationOf(Adapter& adapter, Owner of, HX_U16 owner);
const Activity* MigrationOf(const Adapter& adapter, Owner of, HX_U16 owner);

/// Whether an activity of the virtual disk or of its disk group keeps others from starting there.
bool IsBusy(const Adapter& adapter, const VirtualDisk& virtual_disk);

/// Whether an activity of the disk group or of one of its virtual disks keeps others from starting.
bool IsBusy(const Adapter& adapter, const DiskGroup& group);

/// Sectors processed by now, and the same in percent of the total, 0 to 100.
Sectors Done(const Activity& activity, Time now);
HX_U16 Percentage(const Activity& activity, Time now);

/// Whether `activity` is not null and of that kind.
bool IsKind(const Activity* activity, ActivityKind kind);

}  // namespace hxsim
