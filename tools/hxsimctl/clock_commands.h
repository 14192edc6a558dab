// clock: how virtual time passes.
#pragma once

#include "common/command_parser.h"
#include "driver.h"

namespace hxsimctl {

void AddClockCommands(const vexortools::Command& app, Action& action);

}  // namespace hxsimctl
