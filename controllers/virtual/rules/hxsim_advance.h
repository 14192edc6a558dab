// What the machine does by itself as time passes.
#pragma once

#include "model/hxsim_machine.h"

namespace hxsim {

/// The time of the machine's next own transition; kNever when there is none.
Time NextTransition(const Machine& machine);

/// Performs all transitions that are due by `now`, in order of time, each with its consequences
/// (Settle).
void Advance(Machine& machine, Time now);

}  // namespace hxsim
