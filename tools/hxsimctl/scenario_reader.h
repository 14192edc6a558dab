// Reads scenarios: steps in virtual time, one on each line of a text file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "story.h"

namespace hxsimctl {

/// A line of a scenario that has been understood.
struct Line {
    std::size_t number = 0;  // from 1
    std::string text;        // of the step, for whoever watches
    bool at = false;         // `time` counts from the beginning, not from the step before
    hxsim::Time time = 0;
    Step step;  // empty: time passes, no more
};

/// A scenario that has been understood, its repetitions written out.
struct Scenario {
    std::string file;
    std::vector<Line> lines;
};

/// "story.txt:3: ", as messages begin.
std::string PlaceOf(const std::string& file, std::size_t line);

/// Reads a scenario's text. `file` is its name in failures. Throws UsageError with file and line.
Scenario ReadScenario(const std::string& file, std::string_view text);

}  // namespace hxsimctl
