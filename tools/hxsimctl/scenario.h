// Scenarios: steps in virtual time, from a text file.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "driver.h"

/// What a step does, and what it can ask about what was before it.
class Story;
using Step = std::function<void(Story&)>;

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

/// What has happened while a scenario runs.
class Story {
public:
    explicit Story(Driver& driver);

    Driver& TheDriver() { return driver_; }

    struct Seen {
        Event event{};
        bool expected = false;  // by a step before
    };

    /// Every event since the beginning, also those that have left their adapter's queue.
    std::vector<Seen>& Events();

    /// Notes an event that a step has taken off the queue.
    void Keep(const Event& event);

private:
    void KeepLoss(const Event& event);

    Driver& driver_;
    std::vector<HX_U32> next_;  // number of each adapter's first event that has not been noted
    std::vector<Seen> events_;
};

/// Takes a scenario's text apart. `file` is what failures call it. Throws UsageError with file and
/// line.
Scenario ReadScenario(const std::string& file, std::string_view text);

/// Runs a scenario on a clock that stands still but for the steps, and that goes on at its former
/// speed afterwards. `verbose` prints each step. Throws Refused, with file and line, for the first
/// expectation that fails and the first step that is refused, and when check finds something.
void RunScenario(Driver& driver, const Scenario& scenario, bool verbose);

/// The step that the words say: `expect` with what follows it. Throws UsageError.
Step ParseExpectation(const std::vector<std::string>& words);

/// Whether a word begins a step that calls the library, and that step. Throws UsageError.
bool IsCall(std::string_view word);
Step ParseCall(const std::vector<std::string>& words);
