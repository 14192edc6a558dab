// From the words that were typed to one row of the command tree and its values.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "model/exit_code.h"
#include "shell/command_rows.h"
#include "shell/invocation.h"

namespace vexorctl {

/// The row's options and targets, read from the words behind its noun and verb. Throws UsageError.
Invocation ReadWords(const CommandRow& row, const std::vector<std::string>& words);

/// Reads the command line, finds the row among those of the nouns and runs it. Throws UsageError,
/// Failure, Unavailable and OutputError.
Exit RunCommandLine(std::span<const NounRow> nouns, int argc, const char* const* argv);

}  // namespace vexorctl
