// Whether what runs in the background can go on, has to wait, or has to end.
#pragma once

#include "rules/hxsim_settling.h"

namespace hxsim {

/// Settling rule: what ran on an object that is gone goes with it, without an event and without any
/// further consequence.
bool DropOrphans(Settling& settling);

/// Settling rule: a migration waits while its virtual disks are not optimal, and fails when what it
/// writes would be of no use.
bool SettleMigrations(Settling& settling);

/// Settling rule: whatever else runs on a virtual disk or disk group fails when it cannot go on.
bool SettleActivities(Settling& settling);

/// Settling rule: media patrols and data scrubs wait for the rebuilds that their disk takes part
/// in, and fail when the disk is not ready.
bool SettleDiskActivities(Settling& settling);

}  // namespace hxsim
