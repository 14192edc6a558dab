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
    kEventsLost = 10,  // 9 is what vexorctl risk says
    kInterrupted = 130,
};

constexpr int CodeOf(Exit exit) { return static_cast<int>(exit); }

/// The exit code of a command whose parts ended differently. A failure is more serious the earlier
/// it occurs on the way to the controller: wrong usage outweighs a refusal.
Exit MoreSerious(Exit one, Exit other);

/// The meaning of an exit code in a tool's help.
struct ExitMeaning {
    Exit exit;
    const char* meaning;
};

/// "Exit codes:" and one line for each row in the given order, without a final line end.
std::string ExitCodeHelp(std::span<const ExitMeaning> rows);

}  // namespace vexortools
