// inject: faults in the library's calls.
#pragma once

#include "common/command_parser.h"
#include "driver.h"

namespace hxsimctl {

void AddInjectCommands(const vexortools::Command& app, Action& action);

}  // namespace hxsimctl
