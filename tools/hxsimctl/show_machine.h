// The machine as a tree of lines.
#pragma once

#include <iosfwd>
#include <string>

#include "model/hxsim_machine.h"

namespace hxsimctl {

/// Prints the machine at the time `now`: adapters with their devices, disk groups, virtual disks
/// and batteries, each with its address.
void ShowMachine(const hxsim::Machine& machine, hxsim::Time now, std::ostream& out);

/// Prints the virtual time and the clock's speed.
void ShowClock(const hxsim::Clock& clock, hxsim::Time now, std::ostream& out);

/// Virtual time as a date: 2026-03-01 12:00:00 UTC.
std::string TimeText(hxsim::Time time);

}  // namespace hxsimctl
