// Texts made from the command tree: --help at every level, the usage line, the manual pages and the
// table of functions.
#pragma once

#include <string>

#include "shell/command.h"

/// vexorctl --help
std::string ProgramHelp();
/// vexorctl disk --help
std::string NounHelp(const NounRow& noun);
/// vexorctl disk list --help
std::string CommandHelp(const CommandRow& command);

/// "vexorctl disk list [DISK...] [OPTION...]"
std::string UsageLine(const CommandRow& command);
