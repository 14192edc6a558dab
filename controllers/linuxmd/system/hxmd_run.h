// Runs the programs that change arrays, without a shell.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace hxmd {

enum class Outcome : std::uint8_t {
    kSucceeded,
    kFailed,    // an exit code, a signal, or it could not be started
    kTimedOut,  // it was killed; what it has done is unknown
    kUnknown,   // the host program has taken the exit code (SIGCHLD is ignored, for example)
};

struct Ran {
    Outcome outcome = Outcome::kFailed;
    int exit_code = -1;   // of kFailed; -1: it was not started, or a signal ended it
    std::string message;  // the first line that it wrote
};

/// Runs the program at `path` (below the root prefix) with these arguments, a minimal environment,
/// no input and no other open descriptors, and waits for its end, but no longer than the limit.
Ran Run(const char* path, const std::vector<std::string>& arguments,
        std::chrono::milliseconds limit = std::chrono::minutes(1));

/// Runs mdadm, again when a device was busy: udev's rules open devices for a moment.
Ran RunMdadm(const std::vector<std::string>& arguments);

}  // namespace hxmd
