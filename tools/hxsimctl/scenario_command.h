// scenario run.
#pragma once

#include "common/command_parser.h"
#include "driver.h"

namespace hxsimctl {

void AddScenarioCommand(const vexortools::Command& app, Action& action);

}  // namespace hxsimctl
