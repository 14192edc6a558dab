// The machine as a tree of lines.
#pragma once

#include <iosfwd>
#include <string>

#include "model/hxsim_machine.h"

namespace hxsimctl {

/// Prints the machine as it is at `now`: adapters, what hangs on them, disk groups, virtual disks
/// and batteries, each with its address.
void ShowMachine(const hxsim::Machine& machine, hxsim::Time now, std::ostream& out);

/// Prints the time and how fast it passes.
void ShowClock(const hxsim::Clock& clock, hxsim::Time now, std::ostream& out);

/// Virtual time as a date: 2026-03-01 12:00:00 UTC.
std::string TimeText(hxsim::Time time);

}  // namespace hxsimctl
