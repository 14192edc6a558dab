#include "common/exit_code.h"

#include <algorithm>

namespace vexortools {

namespace {

constexpr Exit kBySeriousness[] = {
    Exit::kDone,    Exit::kEventsLost,   Exit::kRefused,      Exit::kNoObject,
    Exit::kWaiting, Exit::kNotConfirmed, Exit::kNotPermitted, Exit::kUndelivered,
    Exit::kUsage,   Exit::kUnavailable,  Exit::kInterrupted,
};

auto RankOf(Exit exit) { return std::ranges::find(kBySeriousness, exit) - kBySeriousness; }

}  // namespace

Exit MoreSerious(Exit one, Exit other) { return RankOf(one) < RankOf(other) ? other : one; }

std::string ExitCodeHelp(std::span<const ExitMeaning> rows) {
    std::string text = "Exit codes:";
    for (const ExitMeaning& row : rows) {
        text.append("\n  ").append(std::to_string(CodeOf(row.exit))).append("  ");
        text += row.meaning;
    }
    return text;
}

}  // namespace vexortools
