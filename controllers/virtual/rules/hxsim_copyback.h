// Copyback: what a disk serves that has stepped in returns to the disk where it belongs.
#pragma once

#include "rules/hxsim_settling.h"

namespace hxsim {

/// Tells of a disk that is back in its place and too small for what belongs there, when that could
/// return otherwise.
void TellOfSmallHome(Adapter& adapter, Time now, HX_U16 id);

/// Settling rule: starts the copyback of whatever can return home now.
bool StartCopybacks(Settling& settling);

/// The effect of a copyback that is complete: what was written becomes what serves.
void FinishCopyback(Adapter& adapter, const Activity& copyback);

/// Gives back what a copyback has written. With `settle_down`, the positions belong from now on
/// where they are.
void DropCopyback(Adapter& adapter, const Activity& copyback, bool settle_down);

/// From now on the position belongs on the disk that serves it; nothing changes for a lost one.
void BelongThere(Adapter& adapter, Home& home);

}  // namespace hxsim
