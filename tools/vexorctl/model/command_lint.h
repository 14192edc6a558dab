// What the library would do with a command without saying so. It takes any text that it can parse:
// children that it does not know are ignored, numbers are cut to their fields, lists end early.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model/library_functions.h"

namespace vexorctl {

struct LintFinding {
    enum class Kind : std::uint8_t {
        kMalformed,     // nothing is done: not well-formed, or no command at all
        kDeclined,      // nothing is done: no such function
        kUnknownChild,  // ignored
        kTooDeep,       // ignored
        kStrayText,     // ignored
        kNested,        // counts, though it stands within another child
        kRepeated,      // the last one counts
        kEmpty,         // the field keeps what it had
        kNoNumber,      // the same
        kNotANumber,    // what is not a digit ends a number and is skipped
        kNumberCut,     // its low bits count
        kNumbersLeftOut,
        kTextCut,
        kTextRefused,  // too long for a field that is not cut
        kNothingListed,
        kListCut,  // more records than a result holds
    };
    Kind kind;
    unsigned long line;    // counted from 1
    std::string element;   // the child's or the root's name; empty for the whole text
    std::string sentence;  // what the library does
};

/// "number-cut": what a finding's kind is called in output.
std::string_view KeyOf(LintFinding::Kind kind);

/// Whether the library does nothing at all with the command.
bool IsFatal(LintFinding::Kind kind);

/// The findings in the order of the text. `functions` are those that the library has. Throws
/// std::bad_alloc.
std::vector<LintFinding> LintCommand(std::string_view text, std::span<const FunctionRow> functions);

}  // namespace vexorctl
