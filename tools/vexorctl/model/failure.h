// The ways in which a command ends early. main() turns each into one line on standard error and an
// exit code.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "model/exit_code.h"
#include "model/fault.h"

namespace vexorctl {

/// The command line cannot be used as it was typed; what() says why. RunCommandLine adds where to
/// look:
/// "(see vexorctl disk list --help)".
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Any other end: the exit, the line that explains it, and what documents say beside the line.
struct Failure : std::runtime_error {
    Failure(Exit how, const std::string& message, Fault what = {})
        : std::runtime_error(message), exit(how), fault(std::move(what)) {}
    Exit exit;
    Fault fault;
};

}  // namespace vexorctl
