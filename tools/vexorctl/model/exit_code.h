// What vexorctl's exit code says. Every command but `check` ends with one of these.
#pragma once

#include <algorithm>
#include <iterator>
#include <string>

namespace vexorctl {

// In the order of seriousness, not of the numbers: the earlier a command failed on its way to the
// controller, the more serious the failure.
enum class Exit {
    kDone,
    kRefused,
    kNoObject,
    kWaiting,
    kNotConfirmed,
    kNotPermitted,
    kUndelivered,
    kUsage,
    kUnavailable,
    kInterrupted,
};

struct ExitCode {
    Exit exit;
    int code;
    const char* meaning;  // the line in --help and in the manual
};

inline constexpr ExitCode kExitCodes[] = {
    {Exit::kDone, 0, "done"},
    {Exit::kRefused, 1, "the controller refused, or only a part could be done"},
    {Exit::kNoObject, 3, "no such object"},
    {Exit::kWaiting, 7, "the wait timed out; the work goes on"},
    {Exit::kNotConfirmed, 8, "not confirmed, or something changed between look and act"},
    {Exit::kNotPermitted, 4, "not permitted"},
    {Exit::kUndelivered, 6, "the command was declined or malformed, or its result did not fit"},
    {Exit::kUsage, 2, "wrong usage, or a file that cannot be read"},
    {Exit::kUnavailable, 5,
     "the library, the controller, the configuration, the event store or standard output cannot "
     "be used"},
    {Exit::kInterrupted, 130, "interrupted"},
};
static_assert(std::ranges::is_sorted(kExitCodes, {}, &ExitCode::exit) &&
                  std::size(kExitCodes) == static_cast<std::size_t>(Exit::kInterrupted) + 1,
              "a row's place is its Exit");

constexpr int CodeOf(Exit exit) { return kExitCodes[static_cast<std::size_t>(exit)].code; }

constexpr Exit MoreSerious(Exit one, Exit other) { return std::max(one, other); }

/// The rows in the order of their numbers, one line each.
inline std::string ExitCodeHelp() {
    std::string text = "Exit codes:";
    for (int code = 0; code <= 130; ++code) {
        for (const ExitCode& row : kExitCodes) {
            if (row.code == code) text += "\n  " + std::to_string(code) + "  " + row.meaning;
        }
    }
    return text + "\n";
}

}  // namespace vexorctl
