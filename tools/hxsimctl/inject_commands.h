// inject: faults that are put in the way of the library's calls.
#pragma once

#include "command_parser.h"

namespace hxsimctl {

void AddInjectCommands(CLI::App& app, Action& action);

}  // namespace hxsimctl
