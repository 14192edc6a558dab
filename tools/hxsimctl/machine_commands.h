// init, show and check: the commands for the machine as a whole.
#pragma once

#include "common/command_parser.h"
#include "driver.h"

namespace hxsimctl {

void AddMachineCommands(const vexortools::Command& app, Action& action);

}  // namespace hxsimctl
