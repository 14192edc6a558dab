// How hxsimctl's commands fail. main() turns each into one line on standard error and an exit code.
#pragma once

#include <string>

#include "common/failure.h"

namespace hxsimctl {

using vexortools::Exit;
using vexortools::Failure;
using vexortools::UsageError;

/// The machine has no such object.
struct NoObject : Failure {
    explicit NoObject(const std::string& message) : Failure(Exit::kNoObject, message) {}
};

/// The request was refused, or an expectation failed.
struct Refused : Failure {
    explicit Refused(const std::string& message) : Failure(Exit::kRefused, message) {}
};

}  // namespace hxsimctl
