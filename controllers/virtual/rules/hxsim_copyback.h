// Copyback: a position that a stand-in disk serves returns to its home disk.
#pragma once

#include "rules/hxsim_settling.h"

namespace hxsim {

/// Reports a home disk that is present again but too small, when a copyback could start otherwise.
void TellOfSmallHome(Adapter& adapter, Time now, HX_U16 id);

/// Settling rule: starts the copybacks that can run now.
bool StartCopybacks(Settling& settling);

/// The effect of a completed copyback: its target blocks replace the blocks that served.
void FinishCopyback(Adapter& adapter, const Activity& copyback);

/// Frees the target blocks of a copyback. With `settle_down`, the disks that serve the positions
/// become their homes.
void DropCopyback(Adapter& adapter, const Activity& copyback, bool settle_down);

/// Makes the disk that serves the position its home; does nothing for a lost position.
void BelongThere(Adapter& adapter, Home& home);

}  // namespace hxsim
