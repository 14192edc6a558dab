// The exit codes of the tools: a number means the same in each of them.
#pragma once

#include <span>
#include <string>

namespace vexortools {

enum class Exit {
    kDone = 0,
    kRefused = 1,
    kUsage = 2,
    kNoObject = 3,
    kNotPermitted = 4,
    kUnavailable = 5,
    kUndelivered = 6,
    kWaiting = 7,
    kNotConfirmed = 8,
    kInterrupted = 130,
};

constexpr int CodeOf(Exit exit) { return static_cast<int>(exit); }

/// The exit of a command whose parts ended differently. The earlier a part failed on its way to the
/// controller, the more serious it is: wrong usage outweighs a refusal.
Exit MoreSerious(Exit one, Exit other);

/// What a tool's help says of a code.
struct ExitMeaning {
    Exit exit;
    const char* meaning;
};

/// "Exit codes:" and the rows as they stand, a line each, without a line end behind the last.
std::string ExitCodeHelp(std::span<const ExitMeaning> rows);

}  // namespace vexortools
