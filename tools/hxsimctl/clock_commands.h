// clock: shows and sets the virtual clock.
#pragma once

#include "common/command_parser.h"
#include "driver.h"

namespace hxsimctl {

void AddClockCommands(const vexortools::Command& app, Action& action);

}  // namespace hxsimctl
