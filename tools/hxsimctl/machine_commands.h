// init, show and check: the commands for the machine as a whole.
#pragma once

#include "command_parser.h"

namespace hxsimctl {

void AddMachineCommands(CLI::App& app, Action& action);

}  // namespace hxsimctl
