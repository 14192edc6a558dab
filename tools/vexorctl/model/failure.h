// The ways in which a command ends early. main() turns each into one line on standard error and an
// exit code.
#pragma once

#include <string>
#include <utility>

#include "common/failure.h"
#include "model/exit_code.h"
#include "model/fault.h"

namespace vexorctl {

/// The command line cannot be used as it was typed; what() says why. RunCommandLine adds where to
/// look: "(see vexorctl disk list --help)".
using vexortools::UsageError;

/// Any other end: the exit, the line that explains it, and what documents say beside the line.
struct Failure : vexortools::Failure {
    Failure(Exit how, const std::string& message, Fault what = {})
        : vexortools::Failure(how, message), fault(std::move(what)) {}
    Fault fault;
};

}  // namespace vexorctl
