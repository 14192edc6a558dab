// The exceptions that end a command early: main() turns them into one line on standard error and an
// exit code.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include "common/exit_code.h"

namespace vexortools {

/// The command ends with this exit code; what() says what is wrong, why, and what to do instead.
struct Failure : std::runtime_error {
    Failure(Exit how, const std::string& message) : std::runtime_error(message), exit(how) {}
    Exit exit;
};

/// The command line is invalid. Nothing was done.
struct UsageError : Failure {
    explicit UsageError(const std::string& message) : Failure(Exit::kUsage, message) {}
};

/// The text in quotation marks, for messages.
inline std::string Quoted(std::string_view text) { return "\"" + std::string(text) + "\""; }

}  // namespace vexortools
