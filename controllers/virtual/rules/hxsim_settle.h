// The consequences of a change.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// Draws the consequences of whatever has just changed, until nothing follows any more: blocks of
/// disks that are no longer ready fall out of date where the array can do without them, states are
/// computed and changes of state announced, activities that cannot go on end or pause, spares step
/// in, rebuilds and copybacks start, paused ones resume. Called after every change.
void Settle(Adapter& adapter, Time now);

}  // namespace hxsim
