// Incidents from outside: disk, smart, battery, fan, temp, psu and power-cut, and inject. These
// commands are steps of scenarios as well.
#pragma once

#include <string>
#include <vector>

#include "common/command_parser.h"
#include "driver.h"

namespace hxsimctl {

void AddIncidentCommands(const vexortools::Command& app, Action& action);

/// The action of one of these commands; empty when the first word is none of them. Throws
/// UsageError.
Action ParseIncident(const std::vector<std::string>& words);

}  // namespace hxsimctl
