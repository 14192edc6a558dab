#include "scenario.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <memory>
#include <ostream>
#include <utility>

#include "commands.h"
#include "model/hxsim_invariants.h"
#include "rules/hxsim_event_kinds.h"
#include "words.h"

namespace {

using hxsim::Time;
using Words = std::vector<std::string>;

constexpr std::uint64_t kMostRepetitions = 100000;
constexpr std::size_t kMostLines = 1000000;

// ---- Reading ----

// A step in the words of hxsimctl's own commands.
Step ParseIncident(const Words& words) {
    CLI::App app;
    app.set_help_flag();
    app.require_subcommand(1);
    Action action;
    AddIncidents(app, action);
    const auto is_called = [&](const CLI::App* each) { return each->get_name() == words[0]; };
    if (std::as_const(app).get_subcommands(is_called).empty()) {
        throw UsageError('"' + words[0] +
                         "\" is no step; docs/virtual-controller.md lists what can stand there");
    }
    Parse(app, words);
    return [action](Story& story) { action(story.TheDriver()); };
}

Step ParseStep(const Words& words);

// A step that is to be refused by the library, with that code and no other.
Step ParseRefused(const Words& words) {
    if (words.size() < 3) throw UsageError("write refused, the name of a code and a step");
    const auto* const named = std::ranges::find(kHxsimRefusals, words[1], &HxsimRefusal::name);
    if (named == std::end(kHxsimRefusals)) {
        throw UsageError('"' + words[1] +
                         "\" is no name of a refusal; hxraid_codes.h lists them, such as no_space");
    }
    const HxsimRefusal& refusal = *named;
    const Step step = ParseStep({words.begin() + 2, words.end()});
    return [refusal, step](Story& story) {
        try {
            step(story);
        } catch (const CallRefused& refused) {
            if (refused.code == refusal.code) return;
            throw Refused(std::string(refused.what()) + " It was to be refused with " +
                          std::string(refusal.name) + '.');
        }
        throw Refused("it was carried out; it was to be refused with " + std::string(refusal.name) +
                      '.');
    };
}

Step ParseStep(const Words& words) {
    if (words[0] == "expect") return ParseExpectation({words.begin() + 1, words.end()});
    if (words[0] == "refused") return ParseRefused(words);
    if (IsCall(words[0])) return ParseCall(words);
    return ParseIncident(words);
}

Line ParseLine(Words words) {
    Line line;
    if (words[0].starts_with('+')) {
        line.time = ParseDuration(words[0].substr(1));
        words.erase(words.begin());
    } else if (words[0] == "at") {
        if (words.size() < 2) throw UsageError("at needs a time; write one such as at 3h");
        line.at = true;
        line.time = ParseDuration(words[1]);
        words.erase(words.begin(), words.begin() + 2);
    }
    for (const std::string& word : words) line.text += (line.text.empty() ? "" : " ") + word;
    if (!words.empty()) line.step = ParseStep(words);
    return line;
}

class Reader {
public:
    explicit Reader(const std::string& file) { scenario_.file = file; }

    void Read(std::size_t number, std::string_view text) {
        Words words = WordsOf(text);
        if (words.empty()) return;
        if (words[0] == "repeat") return Begin(words, number);
        if (words[0] == "end") return End(words);
        scenario_.lines.push_back(ParseLine(std::move(words)));
        scenario_.lines.back().number = number;
    }

    Scenario Finish() {
        if (times_ != 0) throw UsageError("repeat has no end; write end behind its last step");
        return std::move(scenario_);
    }

    std::size_t OpenRepeat() const { return repeat_line_; }

private:
    void Begin(const Words& words, std::size_t number) {
        if (times_ != 0) throw UsageError("repeat inside repeat; write end before it");
        if (words.size() != 2) throw UsageError("repeat needs a number, such as repeat 100");
        times_ = ParseNumber(words[1], kMostRepetitions, "number of repetitions");
        if (times_ == 0) throw UsageError("repeat 0 does nothing; leave its steps out");
        first_ = scenario_.lines.size();
        repeat_line_ = number;
    }

    void End(const Words& words) {
        if (words.size() != 1) throw UsageError("nothing stands behind end");
        if (times_ == 0)
            throw UsageError("end without repeat; write repeat and a number before it");
        const std::vector<Line> once(scenario_.lines.begin() + static_cast<std::ptrdiff_t>(first_),
                                     scenario_.lines.end());
        if (scenario_.lines.size() + once.size() * (times_ - 1) > kMostLines) {
            throw UsageError("so many repetitions make more than " + std::to_string(kMostLines) +
                             " steps; write fewer");
        }
        for (; times_ > 1; --times_) {
            scenario_.lines.insert(scenario_.lines.end(), once.begin(), once.end());
        }
        times_ = 0;
    }

    Scenario scenario_;
    std::uint64_t times_ = 0;  // of the repeat that is open; 0 none
    std::size_t first_ = 0;    // its first line
    std::size_t repeat_line_ = 0;
};

std::string Place(const std::string& file, std::size_t line) {
    return file + ':' + std::to_string(line) + ": ";
}

// ---- Running ----

// The clock stands still as long as one of these is there, and then goes on as it did.
class StillClock {
public:
    explicit StillClock(Driver& driver) : driver_(driver), speed_(driver.Current().clock.speed) {
        driver_.SetClock(0);
    }
    ~StillClock() {
        try {
            driver_.SetClock(speed_);
        } catch (const std::exception&) {
            // Whatever made the state file unusable has been told already, or will be.
        }
    }
    StillClock(const StillClock&) = delete;
    StillClock& operator=(const StillClock&) = delete;

private:
    Driver& driver_;
    const std::int64_t speed_;
};

void RequireSound(Driver& driver) {
    const std::vector<std::string> broken = hxsim::Check(driver.Current());
    if (!broken.empty()) {
        throw Refused("after it the machine is not sound: " + broken[0] +
                      " hxsimctl check lists all that is wrong");
    }
}

void Run(Story& story, const Line& line, Time begin, Time& passed, bool verbose) {
    Driver& driver = story.TheDriver();
    const Time time = line.at ? line.time : passed + line.time;
    if (time < passed) {
        throw Refused("at " + DurationText(line.time) + " is over; " + DurationText(passed) +
                      " have passed. Put the step further up");
    }
    passed = time;
    driver.SetClock(0, begin + passed - driver.Now());
    if (verbose) {
        driver.Out() << DurationText(passed) << ' ' << line.text << std::endl;
    }
    if (line.step) line.step(story);
    story.Events();  // a full queue loses those that nobody has looked at
    RequireSound(driver);
}

}  // namespace

Scenario ReadScenario(const std::string& file, std::string_view text) {
    Reader reader(file);
    std::size_t number = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        ++number;
        try {
            reader.Read(number, text.substr(0, end));
        } catch (const UsageError& error) {
            throw UsageError(Place(file, number) + error.what());
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    try {
        return reader.Finish();
    } catch (const UsageError& error) {
        throw UsageError(Place(file, reader.OpenRepeat()) + error.what());
    }
}

void RunScenario(Driver& driver, const Scenario& scenario, bool verbose) {
    const StillClock still(driver);
    Story story(driver);
    const Time begin = driver.Now();
    Time passed = 0;
    for (const Line& line : scenario.lines) {
        try {
            Run(story, line, begin, passed, verbose);
        } catch (const Failure& failure) {
            throw Failure(failure.exit, Place(scenario.file, line.number) + failure.what());
        }
    }
}

// ---- What has happened ----

Story::Story(Driver& driver) : driver_(driver) {
    for (const hxsim::Adapter& adapter : driver.Current().adapters) {
        next_.push_back(adapter.next_event);
    }
}

void Story::Keep(const Event& event) {
    if (event.Class == hxsim::kEventError.type && event.Code == hxsim::kEventError.code) {
        return KeepLoss(event);
    }
    if (event.AdapterID >= next_.size() || event.SequenceNo < next_[event.AdapterID]) return;
    next_[event.AdapterID] = event.SequenceNo + 1;
    events_.push_back({event, false});
}

// It stands in the place of what was lost, with a number that has been noted, and changes with
// every further loss.
void Story::KeepLoss(const Event& event) {
    for (Seen& each : events_) {
        if (each.event.AdapterID != event.AdapterID || each.event.Class != event.Class ||
            each.event.Code != event.Code) {
            continue;
        }
        if (!each.expected || each.event.SequenceNo == event.SequenceNo) {
            each.event = event;
            return;
        }
    }
    events_.push_back({event, false});
}

std::vector<Story::Seen>& Story::Events() {
    for (const hxsim::Adapter& adapter : driver_.Current().adapters) {
        for (const hxsim::QueuedEvent& queued : adapter.events) Keep(queued.event);
    }
    return events_;
}
