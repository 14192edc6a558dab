// clock: how virtual time passes.
#pragma once

#include "command_parser.h"

namespace hxsimctl {

void AddClockCommands(CLI::App& app, Action& action);

}  // namespace hxsimctl
