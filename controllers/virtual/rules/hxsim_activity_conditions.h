// Whether background activities can continue, have to wait, or have to end.
#pragma once

#include "rules/hxsim_settling.h"

namespace hxsim {

/// Settling rule: removes the activities of objects that no longer exist, without an event and
/// without further consequences.
bool DropOrphans(Settling& settling);

/// Settling rule: a migration waits while its virtual disks are not optimal, and fails when too
/// many of its target blocks are lost for the result to be usable.
bool SettleMigrations(Settling& settling);

/// Settling rule: every other activity of a virtual disk or disk group fails when it cannot
/// continue.
bool SettleActivities(Settling& settling);

/// Settling rule: media patrols and data scrubs wait while their disk takes part in a rebuild, and
/// fail when the disk is not ready.
bool SettleDiskActivities(Settling& settling);

}  // namespace hxsim
