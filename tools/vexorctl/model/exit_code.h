// What vexorctl's exit codes say. Every command but `check` ends with one of these.
#pragma once

#include <string>

#include "common/exit_code.h"

namespace vexorctl {

// Addresses, exits, durations and the other words that all tools share are vexorctl's own words.
using namespace vexortools;

// The lines in --help and in the manual, in the order of the numbers.
inline constexpr ExitMeaning kExitMeanings[] = {
    {Exit::kDone, "done"},
    {Exit::kRefused, "the controller refused, or only a part could be done"},
    {Exit::kUsage, "wrong usage, or a file that cannot be read"},
    {Exit::kNoObject, "no such object"},
    {Exit::kNotPermitted, "not permitted"},
    {Exit::kUnavailable,
     "the library, the controller, the configuration, the event store or standard output cannot "
     "be used"},
    {Exit::kUndelivered, "the command was declined or malformed, or its result did not fit"},
    {Exit::kWaiting, "the wait timed out and the work goes on, or the work is paused"},
    {Exit::kNotConfirmed, "not confirmed, or something changed between look and act"},
    {Exit::kEventsLost, "events were lost before event follow could show them"},
    {Exit::kInterrupted, "interrupted"},
};

inline std::string ExitCodeHelp() { return vexortools::ExitCodeHelp(kExitMeanings) + "\n"; }

}  // namespace vexorctl
