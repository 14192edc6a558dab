#include "common/exit_code.h"

namespace vexortools {

namespace {

int SeriousnessOf(Exit exit) {
    switch (exit) {
        case Exit::kDone:
            return 0;
        case Exit::kRefused:
            return 1;
        case Exit::kNoObject:
            return 2;
        case Exit::kWaiting:
            return 3;
        case Exit::kNotConfirmed:
            return 4;
        case Exit::kNotPermitted:
            return 5;
        case Exit::kUndelivered:
            return 6;
        case Exit::kUsage:
            return 7;
        case Exit::kUnavailable:
            return 8;
        case Exit::kInterrupted:
            return 9;
    }
    return 9;
}

}  // namespace

Exit MoreSerious(Exit one, Exit other) {
    return SeriousnessOf(one) < SeriousnessOf(other) ? other : one;
}

std::string ExitCodeHelp(std::span<const ExitMeaning> rows) {
    std::string text = "Exit codes:";
    for (const ExitMeaning& row : rows) {
        text.append("\n  ").append(std::to_string(CodeOf(row.exit))).append("  ");
        text += row.meaning;
    }
    return text;
}

}  // namespace vexortools
