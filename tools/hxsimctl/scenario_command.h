// scenario run.
#pragma once

#include "command_parser.h"

namespace hxsimctl {

void AddScenarioCommand(CLI::App& app, Action& action);

}  // namespace hxsimctl
