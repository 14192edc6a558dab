// The ways in which a command ends early. main() turns each into one line on standard error and an
// exit code.
#pragma once

#include <stdexcept>
#include <string>

#include "exit_code.h"

/// The command line is no use as it stands. `hint` tells where to look: "vexorctl disk list
/// --help".
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Any other end: the exit and the line that explains it.
struct Failure : std::runtime_error {
    Failure(Exit how, const std::string& message) : std::runtime_error(message), exit(how) {}
    Exit exit;
};
