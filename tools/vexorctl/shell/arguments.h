// Arguments, exactly as they were typed.
//
// CLI11 takes a positional argument in square brackets for a list of its own and "++" for the end
// of a command, though a file may be named so. Such arguments, and all that stand behind "--", are
// marked before CLI11 sees them, so that they are plain positional ones, and the mark is taken off
// where they are read.
#pragma once

#include <string>
#include <vector>

namespace vexorctl {

/// The arguments without the first "--", marked for CLI11.
std::vector<std::string> MarkedArguments(const std::vector<std::string>& typed);

/// The argument without its mark.
std::string Unmarked(std::string argument);

/// A message of CLI11's as a user may see it.
std::string WithoutMarks(std::string message);

}  // namespace vexorctl
