// What vexorctl's exit code says. Every command ends with one of these.
#pragma once

#include <algorithm>
#include <iterator>
#include <string>

// In the order of seriousness, not of the numbers: the earlier a command failed on its way to the
// controller, the more serious the failure.
enum class Exit {
    kDone,
    kRefused,
    kUndelivered,
    kUsage,
    kUnavailable,
};

struct ExitCode {
    Exit exit;
    int code;
    const char* meaning;  // the line in --help
};

// Codes 3, 4, 7, 8 and 9 are left free.
inline constexpr ExitCode kExitCodes[] = {
    {Exit::kDone, 0, "done"},
    {Exit::kRefused, 1, "the controller refused: its RetVal is not 0"},
    {Exit::kUndelivered, 6, "the command was declined or malformed, or its result did not fit"},
    {Exit::kUsage, 2, "wrong usage, or a file that cannot be read"},
    {Exit::kUnavailable, 5, "the library, its configuration or standard output cannot be used"},
};
static_assert(std::ranges::is_sorted(kExitCodes, {}, &ExitCode::exit) &&
                  std::size(kExitCodes) == static_cast<std::size_t>(Exit::kUnavailable) + 1,
              "a row's place is its Exit");

constexpr int CodeOf(Exit exit) { return kExitCodes[static_cast<std::size_t>(exit)].code; }

constexpr Exit MoreSerious(Exit one, Exit other) { return std::max(one, other); }

/// The rows as the closing text of --help.
inline std::string ExitCodeHelp() {
    std::string text =
        "Exit codes, the most serious last; with several commands the most serious one counts:";
    for (const ExitCode& row : kExitCodes) {
        text += "\n  " + std::to_string(row.code) + "  " + row.meaning;
    }
    return text;
}
