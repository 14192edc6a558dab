// The machine as a tree of lines.
#pragma once

#include <iosfwd>

#include "model/hxsim_machine.h"

/// Prints the machine as it is at `now`: adapters, what hangs on them, disk groups, virtual disks
/// and batteries, each with its address.
void Show(const hxsim::Machine& machine, hxsim::Time now, std::ostream& out);

/// Prints the time and how fast it passes.
void ShowClock(const hxsim::Clock& clock, hxsim::Time now, std::ostream& out);
