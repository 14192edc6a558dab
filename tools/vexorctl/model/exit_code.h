// What vexorctl's exit codes say.
#pragma once

#include <iterator>
#include <string_view>
#include <vector>

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

/// A noun's own exit codes: beside those of all commands or, where they are all, instead of them.
struct OwnExit {
    std::string_view noun;
    ExitMeaning row;
    bool are_all;
};
inline constexpr OwnExit kOwnExits[] = {
    {"check", {static_cast<Exit>(0), "OK"}, true},
    {"check", {static_cast<Exit>(1), "WARNING"}, true},
    {"check", {static_cast<Exit>(2), "CRITICAL"}, true},
    {"check",
     {static_cast<Exit>(3),
      "UNKNOWN, also for wrong usage and for what cannot be used: library, configuration, "
      "controller"},
     true},
    {"risk", {static_cast<Exit>(9), "the next failure of a disk may lose data"}, false},
    {"tape",
     {static_cast<Exit>(11), "the tape that was played back has no answer to some calls"},
     false},
};

/// The exit codes with which the commands of a noun may end; an empty noun: those of all commands.
inline std::vector<ExitMeaning> ExitsOf(std::string_view noun) {
    std::vector<ExitMeaning> rows(std::begin(kExitMeanings), std::end(kExitMeanings));
    for (const OwnExit& own : kOwnExits) {
        if (own.noun == noun && own.are_all) rows.clear();
    }
    for (const OwnExit& own : kOwnExits) {
        if (own.noun == noun) rows.push_back(own.row);
    }
    return rows;
}

}  // namespace vexorctl
