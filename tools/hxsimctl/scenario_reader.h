// Reads scenarios: steps in virtual time, one on each line of a text file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "story.h"

namespace hxsimctl {

/// A parsed line of a scenario.
struct Line {
    std::size_t number = 0;  // from 1
    std::string text;        // the step's text, for --verbose
    bool at = false;         // `time` counts from the start, not from the previous step
    hxsim::Time time = 0;
    Step step;  // empty: only time passes
};

/// A parsed scenario with its repetitions expanded.
struct Scenario {
    std::string file;
    std::vector<Line> lines;
};

/// "story.txt:3: ", the start of messages.
std::string PlaceOf(const std::string& file, std::size_t line);

/// Reads a scenario's text. `file` is its name in failures. Throws UsageError with file and line.
Scenario ReadScenario(const std::string& file, std::string_view text);

}  // namespace hxsimctl
