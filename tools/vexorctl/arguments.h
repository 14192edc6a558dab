// Positional arguments, exactly as they were typed.
//
// CLI11 takes a positional argument in square brackets for a list of its own and "++" for the end
// of a command, though a file may be named so, and it looks for commands behind "--" once a list of
// files has begun. Such arguments, and all that stand behind "--", are marked before CLI11 sees
// them, so that they are plain positional ones, and the mark is taken off where they are read.
#pragma once

#include <CLI/Option.hpp>
#include <string>
#include <vector>

// For Option::expected: no upper limit.
inline constexpr int kAnyNumber = CLI::detail::expected_max_vector_size;

/// All of argv, the program's name included, without the first "--", marked for CLI11.
std::vector<std::string> MarkedArguments(int argc, const char* const* argv);

/// The arguments that the option took, without marks; none when it was not given.
std::vector<std::string> ArgumentsOf(const CLI::Option& option);

/// A message of CLI11's as a user may see it.
std::string WithoutMarks(std::string message);
