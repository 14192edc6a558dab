// The states of virtual disks and disk groups as disks are lost and return.
#pragma once

#include "model/hxsim_codes.h"
#include "rules/hxsim_settling.h"

namespace hxsim {

/// The event that reports a virtual disk's new state.
EventKind EventOfState(State state);

/// Settling rule: marks blocks on disks that are not ready as out of date, since writes continue
/// without them. Not for an offline virtual disk, to which nothing is written.
bool LetBlocksFallOutOfDate(Settling& settling);

/// Settling rule: updates the Home rows, so that the disk that serves a position is the disk of its
/// block. Nothing else depends on it, so it never counts as a change.
bool FollowBlocks(Settling& settling);

/// Settling rule: announces the states of virtual disks that have changed.
bool AnnounceStates(Settling& settling);

/// Sets the states of disk groups. They depend on the virtual disks, so this runs last; they have
/// no event.
void SetGroupStates(Adapter& adapter);

}  // namespace hxsim
