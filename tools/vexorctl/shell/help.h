// Texts made from the command tree: --help at every level, the usage line, the manual pages and the
// table of functions.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "shell/command_rows.h"

namespace vexorctl {

/// vexorctl --help
std::string ProgramHelp(std::span<const NounRow> nouns);
/// vexorctl disk --help
std::string NounHelp(const NounRow& noun);
/// vexorctl disk list --help
std::string CommandHelp(const CommandRow& command);

/// vexorctl help NOUN [VERB]. Throws UsageError for words that are none.
std::string HelpFor(std::span<const NounRow> nouns, const std::vector<std::string>& words);

/// "vexorctl disk list [DISK...] [OPTION...]"
std::string UsageLine(const CommandRow& command);

}  // namespace vexorctl
