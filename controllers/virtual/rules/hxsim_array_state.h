// The states of virtual disks and disk groups as disks are lost and come back.
#pragma once

#include "model/hxsim_codes.h"
#include "rules/hxsim_settling.h"

namespace hxsim {

/// The event that tells that a virtual disk has come to a state.
EventKind EventOfState(State state);

/// Settling rule: writes go on without the disks that are not ready, so their blocks fall out of
/// date. Nothing is written any more once the virtual disk is offline.
bool LetBlocksFallOutOfDate(Settling& settling);

/// Settling rule: the disk that serves a position is the one where its block lies. Nothing else
/// follows from it, so it never counts as a change.
bool FollowBlocks(Settling& settling);

/// Settling rule: announces the states of virtual disks that have changed.
bool AnnounceStates(Settling& settling);

/// Sets the states of disk groups, which follow from everything else and have no event.
void SetGroupStates(Adapter& adapter);

}  // namespace hxsim
