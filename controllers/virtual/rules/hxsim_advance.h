// What the machine does by itself as time goes on.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// When something happens on this machine by itself next; kNever when nothing will.
Time NextTransition(const Machine& machine);

/// Lets everything happen that is due by `now`, in the order of its time, each with its
/// consequences (Settle).
void Advance(Machine& machine, Time now);

}  // namespace hxsim
